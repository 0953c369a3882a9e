#pragma once

#include "common/filesystem/ftp/qurlinfo.h"

#include <QObject>

#include <chrono>
#include <memory>

class QIODevice;

namespace vantrel {

struct FtpOutcome;
struct FtpPlacing;
struct QFtpCommand;
class QFtpPrivate;

/// A client of FTP (RFC 959, 2428, 3659). Every method that does something with the server only puts it in a
/// queue and gives its number; commandStarted() and commandFinished() tell the rest. A command that fails
/// takes all behind it with it, which commandDropped() tells. Nothing blocks; all of it lives on the one
/// thread that made it.
class QFtp : public QObject
{
    Q_OBJECT

public:
    enum Command : int {
        None = 0,
        SetTransferMode = 1,
        SetProxy = 2,
        ConnectToHost = 3,
        Login = 4,
        Close = 5,
        List = 6,
        Cd = 7,
        Get = 8,
        Put = 9,
        Remove = 10,
        Mkdir = 11,
        Rmdir = 12,
        Rename = 13,
        Noop = 14,
        RawCommand = 15,
        Size = 16,
    };
    Q_ENUM(Command)
    enum State { Unconnected = 0, HostLookup = 1, Connecting = 2, Connected = 3, LoggedIn = 4, Closing = 5 };
    Q_ENUM(State)
    enum Error { NoError = 0, UnknownError = 1, HostNotFound = 2, ConnectionRefused = 3, NotConnected = 4 };
    Q_ENUM(Error)
    enum TransferType { Binary = 0, Ascii = 1 };
    enum TransferMode { Active = 0, Passive = 1 };

    explicit QFtp(QObject* parent = nullptr);
    ~QFtp() override;

    int connectToHost(const QString& host, quint16 port = 21);
    int login(const QString& user = QString(), const QString& password = QString());
    int close();
    int noop();
    int setTransferMode(TransferMode mode);
    int setProxy(const QString& host, quint16 port);
    int list(const QString& dir = QString());
    int cd(const QString& dir);
    /// Without a device the data wait to be read. offset (bytes): the file is read from there on, and what is
    /// told as done begins with it; the device stands where they belong.
    int get(const QString& file, QIODevice* device = nullptr, TransferType type = Binary, qint64 offset = 0);
    int put(const QByteArray& data, const QString& file, TransferType type = Binary);
    /// A device that is not sequential is sent from offset on.
    int put(QIODevice* device, const QString& file, TransferType type = Binary, qint64 offset = 0);
    /// All of the device, and then gives it its place: outcome().
    int put(QIODevice* device, const QString& file, const FtpPlacing& placing);
    int remove(const QString& file);
    int mkdir(const QString& dir);
    int rmdir(const QString& dir);
    int rename(const QString& oldName, const QString& newName);
    int rawCommand(const QString& command);
    /// Asks for the size of a file: fileSize().
    int size(const QString& file);
    /// Asks when a file was changed last: rawCommandReply().
    int modified(const QString& file);

    /// The number of the next command, of QFtpCommand::nextId().
    void setNextId(int id);
    /// How long a server may be silent, while something is wanted of it, before the connection is given up:
    /// 20 seconds.
    void setPatience(std::chrono::milliseconds patience);
    /// Of files, both ways; 0: as fast as it goes.
    void setRateLimit(qint64 bytesPerSecond);

    /// Of the transfer that runs, or of the last one.
    FtpOutcome outcome() const;
    int currentId() const;
    Command currentCommand() const;
    QIODevice* currentDevice() const;
    bool hasPendingCommands() const;
    void clearPendingCommands();
    State state() const;
    Error error() const;
    QString errorString() const;
    qint64 bytesAvailable() const;
    qint64 read(char* data, qint64 maxSize);
    QByteArray readAll();

public Q_SLOTS:
    /// Ends the current command, as failed, and drops all behind it.
    void abort();

Q_SIGNALS:
    void stateChanged(int state);
    void listInfo(const vantrel::QUrlInfo& info);
    void readyRead();
    void dataTransferProgress(qint64 done, qint64 total);
    void rawCommandReply(int code, const QString& text);
    void fileSize(qint64 bytes);
    void outcomeChanged();
    void commandStarted(int id);
    void commandFinished(int id, bool error);
    /// It was waiting, and will not begin.
    void commandDropped(int id, const QString& why);
    void done(bool error);

private:
    int add(Command command, const QStringList& lines);
    int add(std::unique_ptr<QFtpCommand> command);

    std::unique_ptr<QFtpPrivate> d;
};

} // namespace vantrel
