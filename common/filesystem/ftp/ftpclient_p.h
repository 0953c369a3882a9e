#pragma once

#include "common/filesystem/ftp/clientcredentials.h"
#include "common/filesystem/ftp/commandrequest.h"
#include "common/filesystem/ftp/ftpclient.h"
#include "common/filesystem/ftp/ftpworker.h"

#include <QHash>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>

namespace vantrel {

/// What an FtpClient knows and decides; it owns this. Main thread only: the worker's signals come queued.
class FtpClientPrivate : public QObject
{
    Q_OBJECT

public:
    explicit FtpClientPrivate(FtpClient* q);
    ~FtpClientPrivate() override;

    void setCredentials(const ClientCredentials& credentials) { m_credentials = credentials; }
    ClientCredentials credentials() const { return m_credentials; }
    bool isServerConnected() const;
    bool isLoading() const;
    bool connectToServer(const QString& host, int port);
    bool disconnectServer();
    bool list(const QString& path);
    bool remove(const QString& path);
    bool create(const QString& path, ClientFileSystemType type);
    bool rename(const QString& path, const QString& newName);
    bool move(const QString& from, const QString& to);
    bool write(const QString& path, QIODevice* device, qint64 offset);
    bool read(const QString& path, QIODevice* device, qint64 offset);
    bool writeAndPlace(const QString& path, QIODevice* device, const FtpPlacing& placing);
    FtpOutcome lastOutcome() const { return m_worker->outcome(m_transferId); }
    bool takeFollowUp();
    bool isFollowUpDue() const { return m_isFollowUpDue; }
    void dropFollowUp();
    bool resume(const QString& path, QIODevice* device, qint64 offset, QFtp::Command command);
    bool size(const QString& path);
    bool modified(const QString& path);
    void abort();
    QString lastErrorText() const { return m_errorText; }
    ClientListing takeListing(const QList<ClientFileSystemInfo>& entries);
    void setPatience(std::chrono::milliseconds patience) { m_worker->setPatience(patience); }
    void setRateLimit(qint64 bytesPerSecond) { m_worker->setRateLimit(bytesPerSecond); }
    void setReconnectUnit(std::chrono::milliseconds unit) { m_reconnectUnit = unit; }
    void setKeepaliveInterval(std::chrono::milliseconds interval);

private Q_SLOTS:
    void onFtpCommandFinished(int id, bool error, qint64 done, qint64 total);
    void onFtpStateChanged(int state);
    void onFtpListInfo(const vantrel::FtpListing& listing);
    void onFtpCommandStarted(int id);
    void onFollowUpDropped(int id);
    void onDataTransferProgressed(qint64 done, qint64 total);
    void onKeepaliveTimer();
    void onReconnectTimer();

private:
    using Kinds = QHash<QString, FtpListing::Kind>;
    struct DeleteLater
    {
        void operator()(FtpWorker* worker) const;
    };

    void setActiveCommand(QFtp::Command command, int id, const QVariantList& parameters = {});
    void setActiveCommand(QFtp::Command command, int id, const QVariant& parameter);
    void clearActiveCommand();
    void startConnecting();
    void login();
    void handleUnconnected();
    void finishCommand(const CommandRequest& request, bool succeeded);
    void finishConnecting();
    void finishRename(const CommandRequest& request, bool succeeded);
    void finishFileListing(bool succeeded);
    std::optional<FtpListing::Kind> known(const QString& path) const;
    ClientFileSystemType getPathType(const QString& path) const;
    void rememberPath(const QString& path, ClientFileSystemType type, bool isSymLink = false);
    void forgetPath(const QString& path);
    bool startWriting(int id, const QVariantList& paths);
    bool startTransfer(QFtp::Command command, int id, const QVariantList& paths);
    int predecessor() const;
    static QString pathKey(const QString& path);

    FtpClient* const m_q;
    std::unique_ptr<FtpWorker, DeleteLater> m_worker;
    QTimer m_keepaliveTimer;
    QTimer m_reconnectTimer;
    ClientCredentials m_credentials;
    CommandRequest m_active;
    CommandRequest m_followUp;               // begins when the active one has succeeded
    bool m_isFollowUpDue = false;            // the next transfer that is asked for is to be one
    int m_transferId = 0;                    // of the last one that was active
    FtpListing m_listing;                    // of the active LIST
    FtpListing m_endedListing;               // of the one that is over, until it is told
    std::optional<ClientListing> m_prepared; // of the listing that is being told
    QHash<QString, Kinds> m_listed;          // by directory, without a "/" at its end, and name
    Kinds m_pathTypes;                       // what was made here, by path, likewise
    int m_lastState = QFtp::Unconnected;
    bool m_isReconnectEnabled = false;
    bool m_isLeaving = false; // disconnectServer() is on its way
    QString m_host;
    int m_port = 0;
    qint64 m_reconnectAttempts = 0;
    std::chrono::milliseconds m_reconnectUnit{100};
    qint64 m_fileSize = -1;
    QString m_modified; // as the server said it
    QString m_errorText;
};

} // namespace vantrel
