#pragma once

#include "common/filesystem/ftp/filesystemclient.h"

#include <chrono>
#include <memory>

namespace vantrel {

class FtpClientPrivate;

/// A server's files over FTP. The protocol runs on a thread of the client's own, so that a long transfer
/// costs the main thread nothing but its progress. Comes back by itself after a loss, more and more slowly,
/// until disconnectServer().
class FtpClient : public FileSystemClient
{
    Q_OBJECT

public:
    explicit FtpClient(QObject* parent = nullptr);
    ~FtpClient() override;

    int defaultPort() const override { return 21; }
    bool setCredentials(const ClientCredentials& credentials) override;
    ClientCredentials credentials() const override;
    bool isServerConnected() const override;
    bool isLoading() const override;
    bool connectToServer(const QString& host, int port) override;
    bool disconnectServer() override;
    bool list(const QString& path) override;
    bool remove(const QString& path) override;
    bool create(const QString& path, ClientFileSystemType type) override;
    bool rename(const QString& path, const QString& newName) override;
    bool write(const QString& path, QIODevice* device, qint64 size) override;
    bool read(const QString& path, QIODevice* device, qint64 size) override;
    bool copy(const QString& from, const QString& to) override;
    bool move(const QString& from, const QString& to) override;
    void abort() override;
    bool size(const QString& path) override;
    bool writeAndPlace(const QString& path, QIODevice* device, const FtpPlacing& placing) override;
    FtpOutcome lastOutcome() const override;
    bool modified(const QString& path) override;
    bool takeFollowUp() override;
    void dropFollowUp() override;
    bool resumeWrite(const QString& path, QIODevice* device, qint64 offset) override;
    bool resumeRead(const QString& path, QIODevice* device, qint64 offset) override;
    QString lastErrorText() const override;
    ClientListing takeListing(const QList<ClientFileSystemInfo>& entries) override;
    void setRateLimit(qint64 bytesPerSecond) override;

    /// How long the server may be silent while something is wanted of it.
    void setPatience(std::chrono::milliseconds patience);
    /// The first wait before coming back; that of the nth attempt is n * n times as long.
    void setReconnectUnit(std::chrono::milliseconds unit);
    void setKeepaliveInterval(std::chrono::milliseconds interval);

private:
    bool mayTransfer();
    bool mayStart() const { return isServerConnected() && !isLoading(); }

    std::unique_ptr<FtpClientPrivate> d;
};

} // namespace vantrel
