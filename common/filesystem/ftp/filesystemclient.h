#pragma once

#include "common/filesystem/ftp/clientlisting.h"
#include "common/filesystem/ftp/ftpplacing.h"

#include <QObject>

class QIODevice;

namespace vantrel {

struct ClientCredentials;

/// The way to a server's files, as the server file system uses it. It does one thing at a time: a request
/// answers true when it was started, and its end comes as the signal of that name; while something runs, or
/// without a connection, it answers false and nothing happens. Owned by the file system; main thread.
class FileSystemClient : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isServerConnected READ isServerConnected NOTIFY isServerConnectedChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)

public:
    using QObject::QObject;

    virtual int defaultPort() const = 0;
    virtual bool setCredentials(const ClientCredentials& credentials) = 0;
    virtual ClientCredentials credentials() const = 0;
    virtual bool isServerConnected() const = 0;
    virtual bool isLoading() const = 0;
    /// A negative port means the default one. The client comes back by itself when the connection is lost.
    virtual bool connectToServer(const QString& host, int port) = 0;
    virtual bool disconnectServer() = 0;
    virtual bool list(const QString& path) = 0;
    virtual bool remove(const QString& path) = 0;
    virtual bool create(const QString& path, ClientFileSystemType type) = 0;
    /// newName takes the place of the last component of the path.
    virtual bool rename(const QString& path, const QString& newName) = 0;
    /// The device must be open, without a parent, and left alone until writeFinished() or readFinished(): it
    /// is used on another thread meanwhile. size is only a hint.
    virtual bool write(const QString& path, QIODevice* device, qint64 size) = 0;
    virtual bool read(const QString& path, QIODevice* device, qint64 size) = 0;
    virtual bool copy(const QString& from, const QString& to) = 0;
    /// Both are whole paths; what stands at the second may be replaced, as the server does it.
    virtual bool move(const QString& from, const QString& to) = 0;
    /// Ends what runs, as failed; its signal still comes.
    virtual void abort() = 0;

    /// Asks for the size of a file in bytes: sizeFinished().
    virtual bool size(const QString& path);
    /// Asks when a file was changed last, in the server's own words: modifiedFinished().
    virtual bool modified(const QString& path);
    /// As write() and read(), from the given offset (bytes) of both the file and the device, which is not
    /// sequential. What is reported as done counts from the start of the file.
    virtual bool resumeWrite(const QString& path, QIODevice* device, qint64 offset);
    virtual bool resumeRead(const QString& path, QIODevice* device, qint64 offset);
    /// As write(), of all that is in the device, and then gives it its place where nothing speaks against it:
    /// lastOutcome(). A client that cannot do that only writes.
    virtual bool writeAndPlace(const QString& path, QIODevice* device, const FtpPlacing& placing);
    /// Of the last transfer, as far as it has come.
    virtual FtpOutcome lastOutcome() const { return {}; }
    /// While a transfer runs: the next one that is asked for is taken, and begins as soon as this one has
    /// succeeded: followUpBegan(), before the end of this one is told. Where it does not, followUpDropped()
    /// comes. False when that cannot be.
    virtual bool takeFollowUp() { return false; }
    /// It is not wanted any more, unless it has begun: followUpDropped().
    virtual void dropFollowUp() {}
    /// Why the last command failed, as plain text that may come from the server; empty after one that did
    /// not.
    virtual QString lastErrorText() const { return {}; }
    /// For who hears listFinished(), and only then: its entries as they are looked up and shown, which may be
    /// made already. They are given away, so that whoever asks next has to wait for them.
    virtual ClientListing takeListing(const QList<ClientFileSystemInfo>& entries);
    /// What a transfer may take of the line, also the one that runs; 0: all.
    virtual void setRateLimit(qint64 bytesPerSecond);

Q_SIGNALS:
    void isServerConnectedChanged(bool isServerConnected);
    void isLoadingChanged(bool isLoading);
    void listFinished(const QString& path, const QList<vantrel::ClientFileSystemInfo>& result,
                      bool succeeded);
    void removeFinished(const QString& path, vantrel::ClientFileSystemType type, bool succeeded);
    void createFinished(const QString& path, vantrel::ClientFileSystemType type, bool succeeded);
    void renameFinished(const QString& newPath, vantrel::ClientFileSystemType type, bool succeeded);
    void writeFinished(const QString& filePath, bool succeeded);
    void writeProgressed(const QString& filePath, qint64 bytesWritten, qint64 totalSize);
    void readFinished(const QString& filePath, bool succeeded);
    void readProgressed(const QString& filePath, qint64 bytesRead, qint64 totalSize);
    void copyFinished(const QString& fromPath, const QString& toPath, vantrel::ClientFileSystemType type,
                      bool succeeded);
    void moveFinished(const QString& fromPath, const QString& toPath, vantrel::ClientFileSystemType type,
                      bool succeeded);
    void followUpBegan();
    void followUpDropped();
    void sizeFinished(const QString& path, qint64 bytes, bool succeeded);
    void modifiedFinished(const QString& path, const QString& time, bool succeeded);
};

} // namespace vantrel
