#include "common/filesystem/ftp/qftp.h"

#include "common/filesystem/ftp/qftp_p.h"
#include "tarn/ftp/ftppath.h"

#include <QIODevice>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

const QString lineEnd = QStringLiteral("\r\n");

QString typeLine(QFtp::TransferType type)
{
    return type == QFtp::Binary ? QStringLiteral("TYPE I\r\n") : QStringLiteral("TYPE A\r\n");
}

QString connectionLine(QFtp::TransferMode mode)
{
    return mode == QFtp::Passive ? QStringLiteral("PASV\r\n") : QStringLiteral("PORT\r\n");
}

QString line(const char* verb, const QString& argument)
{
    return QLatin1String(verb) + QLatin1Char(' ') + argument + lineEnd;
}

/// What stands in a line must not end it: that would be another command.
bool isLine(const QString& text)
{
    const bool isEmpty =
        text.indexOf(QLatin1Char(' ')) == text.size() - 3 && !text.startsWith(QLatin1String("PASS "));
    return text.endsWith(lineEnd) && isFtpArgument(text.chopped(2).toStdString()) && !isEmpty;
}

QString badName()
{
    return QFtp::tr("A name that is empty or holds a line break cannot be sent");
}

} // namespace

QFtp::QFtp(QObject* parent)
    : QObject(parent)
    , d(std::make_unique<QFtpPrivate>(this))
{
}

QFtp::~QFtp()
{
    d->pi.disconnect(d.get());
    d->pi.dtp().disconnect(this);
}

int QFtp::add(std::unique_ptr<QFtpCommand> command)
{
    if (const int id = std::exchange(d->nextId, 0))
        command->id = id;
    return d->addCommand(std::move(command));
}

int QFtp::add(Command kind, const QStringList& lines)
{
    auto command = std::make_unique<QFtpCommand>(kind, lines, d->nextId ? d->nextId : QFtpCommand::nextId());
    for (const QString& text : lines) {
        if (!isLine(text))
            command->fault = badName();
    }
    return add(std::move(command));
}

void QFtp::setNextId(int id)
{
    d->nextId = id;
}

void QFtp::setPatience(std::chrono::milliseconds patience)
{
    d->pi.setPatience(patience);
}

void QFtp::setRateLimit(qint64 bytesPerSecond)
{
    d->pi.dtp().setRateLimit(bytesPerSecond);
}

int QFtp::connectToHost(const QString& host, quint16 port)
{
    return add(std::make_unique<QFtpCommand>(ConnectToHost, QStringList{host, QString::number(port)},
                                             d->nextId ? d->nextId : QFtpCommand::nextId()));
}

int QFtp::login(const QString& user, const QString& password)
{
    return add(Login, {line("USER", user.isNull() ? QStringLiteral("anonymous") : user),
                       line("PASS", password.isNull() ? QStringLiteral("anonymous@") : password),
                       QStringLiteral("FEAT\r\n")});
}

int QFtp::close()
{
    return add(Close, {QStringLiteral("QUIT\r\n")});
}

int QFtp::noop()
{
    return add(Noop, {QStringLiteral("NOOP\r\n")});
}

int QFtp::setTransferMode(TransferMode mode)
{
    d->transferMode = mode; // of what is put in the queue from now on
    return add(std::make_unique<QFtpCommand>(SetTransferMode, QStringList{QString::number(mode)},
                                             d->nextId ? d->nextId : QFtpCommand::nextId()));
}

int QFtp::setProxy(const QString& host, quint16 port)
{
    return add(std::make_unique<QFtpCommand>(SetProxy, QStringList{host, QString::number(port)},
                                             d->nextId ? d->nextId : QFtpCommand::nextId()));
}

int QFtp::list(const QString& dir)
{
    // -a also brings what begins with a dot. Servers differ in how LIST takes a name with blanks or brackets,
    // and some show nothing where there is no such folder: to enter it means the same on all of them.
    QString last = QStringLiteral("LIST -a");
    if (dir.startsWith(QLatin1Char('/')))
        return add(List,
                   {line("CWD", dir), typeLine(Ascii), connectionLine(d->transferMode), last + lineEnd});
    if (!dir.isEmpty())
        last += QLatin1Char(' ') + QString::fromStdString(quoteListPath(dir.toStdString()));
    return add(List, {typeLine(Ascii), connectionLine(d->transferMode), last + lineEnd});
}

int QFtp::cd(const QString& dir)
{
    return add(Cd, {line("CWD", dir)});
}

int QFtp::get(const QString& file, QIODevice* device, TransferType type, qint64 offset)
{
    QStringList lines{typeLine(type), line("SIZE", file), connectionLine(d->transferMode)};
    if (offset > 0)
        lines << line("REST", QString::number(offset));
    lines << line("RETR", file);
    const int id = add(Get, lines);
    d->pending.back()->file = file;
    d->pending.back()->data = device;
    d->pending.back()->offset = offset;
    return id;
}

int QFtp::put(const QByteArray& data, const QString& file, TransferType type)
{
    const int id = add(Put, {typeLine(type), connectionLine(d->transferMode),
                             line("ALLO", QString::number(data.size())), line("STOR", file)});
    d->pending.back()->data = data;
    return id;
}

int QFtp::put(QIODevice* device, const QString& file, TransferType type, qint64 offset)
{
    QStringList lines{typeLine(type), connectionLine(d->transferMode)};
    if (device && !device->isSequential())
        lines << line("ALLO", QString::number(std::max<qint64>(device->size() - offset, 0)));
    if (offset > 0)
        lines << line("REST", QString::number(offset));
    lines << line("STOR", file);
    const int id = add(Put, lines);
    d->pending.back()->file = file;
    d->pending.back()->data = device;
    d->pending.back()->offset = offset;
    return id;
}

int QFtp::put(QIODevice* device, const QString& file, const FtpPlacing& placing)
{
    const int id = put(device, file, Binary, 0);
    d->pending.back()->placing = placing;
    if (!isLine(line("RNTO", placing.destination)))
        d->pending.back()->fault = badName();
    return id;
}

FtpOutcome QFtp::outcome() const
{
    return d->outcome;
}

int QFtp::remove(const QString& file)
{
    return add(Remove, {line("DELE", file)});
}

int QFtp::mkdir(const QString& dir)
{
    return add(Mkdir, {line("MKD", dir)});
}

int QFtp::rmdir(const QString& dir)
{
    return add(Rmdir, {line("RMD", dir)});
}

int QFtp::rename(const QString& oldName, const QString& newName)
{
    return add(Rename, {line("RNFR", oldName), line("RNTO", newName)});
}

int QFtp::rawCommand(const QString& command)
{
    return add(RawCommand, {command.trimmed() + lineEnd});
}

int QFtp::size(const QString& file)
{
    return add(Size, {typeLine(Binary), line("SIZE", file)});
}

int QFtp::modified(const QString& file)
{
    return add(RawCommand, {line("MDTM", file)});
}

int QFtp::currentId() const
{
    return d->current() ? d->current()->id : 0;
}

QFtp::Command QFtp::currentCommand() const
{
    return d->current() ? d->current()->command : None;
}

QIODevice* QFtp::currentDevice() const
{
    return d->current() ? d->current()->device() : nullptr;
}

bool QFtp::hasPendingCommands() const
{
    return d->pending.size() > 1;
}

void QFtp::clearPendingCommands()
{
    d->dropWaiting(tr("Aborted"), false);
}

QFtp::State QFtp::state() const
{
    return d->state;
}

QFtp::Error QFtp::error() const
{
    return d->error;
}

QString QFtp::errorString() const
{
    return d->errorString;
}

qint64 QFtp::bytesAvailable() const
{
    return d->pi.dtp().bytesAvailable();
}

qint64 QFtp::read(char* data, qint64 maxSize)
{
    return d->pi.dtp().read(data, maxSize);
}

QByteArray QFtp::readAll()
{
    return d->pi.dtp().readAll();
}

void QFtp::abort()
{
    d->abort();
}

} // namespace vantrel
