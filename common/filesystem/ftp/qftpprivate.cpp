#include "common/filesystem/ftp/ftplogging.h"
#include "common/filesystem/ftp/qftp_p.h"

#include <QIODevice>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

// Answers.
constexpr int noRoom = 552;
constexpr int notThere = 550; // or not a file; that it was not able to look, it says otherwise

QString question(const char* verb, const QString& file)
{
    return QLatin1String(verb) + QLatin1Char(' ') + file + QLatin1String("\r\n");
}

/// Of the answer to FEAT (RFC 2389), a line for each.
bool knowsChecksums(const QString& features)
{
    const QStringList lines = features.split(QLatin1Char('\n'));
    return std::ranges::any_of(lines, [](const QString& line) {
        return line.simplified()
                   .section(QLatin1Char(' '), 0, 0)
                   .compare(QLatin1String("XCRC"), Qt::CaseInsensitive) == 0;
    });
}

/// Servers differ in whether a name with blanks wants to be quoted; quoted it is one word to all of them.
QString checksumQuestion(const QString& file)
{
    const QLatin1Char quote('"');
    return question("XCRC", file.contains(quote) ? file : quote + file + quote);
}

/// A server may say back what it was told, and what it says is shown and written to the log.
QString withoutPassword(QString text, const QFtpCommand& login)
{
    const QString password = login.rawCmds.at(1).mid(int(sizeof("PASS"))).trimmed();
    return password.isEmpty() ? text : text.replace(password, QStringLiteral("***"));
}

} // namespace

QFtpPrivate::QFtpPrivate(QFtp* q)
    : m_q(q)
{
    connect(&pi, &QFtpPI::connectState, this, &QFtpPrivate::_q_piConnectState);
    connect(&pi, &QFtpPI::finished, this, &QFtpPrivate::_q_piFinished);
    connect(&pi, &QFtpPI::error, this, &QFtpPrivate::_q_piError);
    connect(&pi, &QFtpPI::rawFtpReply, this, &QFtpPrivate::onReply);
    connect(&pi, &QFtpPI::fileSize, this, [this](qint64 bytes) {
        if (current() && current()->command == QFtp::Size)
            Q_EMIT m_q->fileSize(bytes);
    });
    connect(&pi.dtp(), &QFtpDTP::listInfo, m_q, &QFtp::listInfo);
    connect(&pi.dtp(), &QFtpDTP::readyRead, m_q, &QFtp::readyRead);
    connect(&pi.dtp(), &QFtpDTP::dataTransferProgress, m_q, &QFtp::dataTransferProgress);
}

int QFtpPrivate::addCommand(std::unique_ptr<QFtpCommand> command)
{
    const int id = command->id;
    pending.push_back(std::move(command));
    if (pending.size() == 1)
        schedule();
    return id;
}

void QFtpPrivate::schedule()
{
    QTimer::singleShot(0, this, &QFtpPrivate::_q_startNextCommand);
}

void QFtpPrivate::_q_startNextCommand()
{
    QFtpCommand* const command = current();
    if (!command || command->isStarted)
        return;
    command->isStarted = true;
    error = QFtp::NoError;
    errorString = QFtp::tr("Unknown error");
    pi.dtp().reset();
    Q_EMIT m_q->commandStarted(command->id);
    if (current() != command)
        return;
    if (!command->fault.isEmpty())
        _q_piError(QFtp::UnknownError, command->fault);
    else
        start(*command);
}

void QFtpPrivate::start(QFtpCommand& command)
{
    switch (command.command) {
    case QFtp::SetTransferMode:
        transferMode = QFtp::TransferMode(command.rawCmds.constFirst().toInt());
        pi.resetTransferConnection();
        return _q_piFinished(QFtp::tr("Transfer mode set"));
    case QFtp::SetProxy:
        m_proxyHost = command.rawCmds.constFirst();
        m_proxyPort = command.rawCmds.constLast().toUShort();
        return _q_piFinished(QFtp::tr("Proxy set to %1:%2").arg(m_proxyHost).arg(m_proxyPort));
    case QFtp::ConnectToHost:
        host = command.rawCmds.constFirst();
        port = command.rawCmds.constLast().toUShort();
        if (m_proxyHost.isEmpty())
            pi.connectToHost(host, port);
        else
            pi.connectToHost(m_proxyHost, m_proxyPort);
        return;
    case QFtp::Login:
        rewriteForProxy(command);
        break;
    case QFtp::Close:
        if (state == QFtp::Unconnected)
            return finish(false);
        state = QFtp::Closing;
        Q_EMIT m_q->stateChanged(state);
        break;
    case QFtp::Get:
        setOutcome({});
        pi.dtp().setDevice(command.device(), command.offset);
        pi.dtp().setChecksumWanted(m_knowsChecksums && command.device() && command.offset == 0);
        break;
    case QFtp::Put:
        startPut(command);
        break;
    case QFtp::RawCommand:
        pi.setRawCommand();
        break;
    default:
        break;
    }
    if (current() == &command)
        pi.sendCommands(command.rawCmds);
}

void QFtpPrivate::startPut(QFtpCommand& command)
{
    QFtpDTP& dtp = pi.dtp();
    setOutcome({});
    m_answers = {};
    dtp.setChecksumWanted(m_knowsChecksums && command.placing);
    if (command.isByteArray()) {
        auto& data = std::get<QByteArray>(command.data);
        dtp.setData(&data);
        dtp.setBytesTotal(data.size());
        return;
    }
    QIODevice* const device = command.device();
    if (!device)
        return;
    if (!device->isOpen())
        device->open(QIODevice::ReadOnly);
    dtp.setDevice(device, command.offset);
    if (device->isSequential()) {
        dtp.setBytesTotal(0);
        connect(device, &QIODevice::readyRead, &dtp, &QFtpDTP::dataReadyRead, Qt::UniqueConnection);
        connect(device, &QIODevice::readChannelFinished, &dtp, &QFtpDTP::dataReadyRead, Qt::UniqueConnection);
    } else {
        dtp.setBytesTotal(device->size());
    }
}

// ------------------------------------------------------------------ what comes behind the bytes

void QFtpPrivate::setOutcome(FtpOutcome next)
{
    outcome = next;
    Q_EMIT m_q->outcomeChanged();
}

void QFtpPrivate::onReply(int code, const QString& text)
{
    const QFtpCommand* const command = current();
    if (!command)
        return;
    if (command->command == QFtp::RawCommand)
        Q_EMIT m_q->rawCommandReply(code, text);
    else if (command->step == QFtpCommand::Questions)
        takeAnswer(*command, code, text);
    else if (command->command == QFtp::Login && pi.currentCommand().startsWith(QLatin1String("FEAT")))
        m_knowsChecksums = code == 211 && knowsChecksums(text);
}

void QFtpPrivate::takeAnswer(const QFtpCommand& command, int code, const QString& text)
{
    const QString line = pi.currentCommand();
    if (line.startsWith(QLatin1String("XCRC ")))
        takeChecksum(code, text);
    else if (!command.placing)
        return;
    else if (line.startsWith(QLatin1String("RNFR ")))
        m_answers.isNamed = code / 100 == 3;
    else if (line == question("SIZE", command.file))
        m_answers.isWhole = code == 213 && text.simplified() == QString::number(command.placing->size);
    else
        m_answers.isFree = code == notThere;
}

void QFtpPrivate::takeChecksum(int code, const QString& text)
{
    bool isNumber = false;
    const quint32 theirs = text.simplified().section(QLatin1Char(' '), 0, 0).toUInt(&isNumber, 16);
    if (code / 100 == 2 && isNumber)
        setOutcome(
            {outcome.placed, theirs == pi.dtp().checksum() ? FtpOutcome::Same : FtpOutcome::Different});
}

/// True when there is more to do than the lines of the command that are done.
bool QFtpPrivate::goOn(QFtpCommand& command)
{
    switch (command.step) {
    case QFtpCommand::Main:
        return (command.command == QFtp::Get || command.command == QFtp::Put) && askAboutIt(command);
    case QFtpCommand::Questions:
        return giveName(command);
    case QFtpCommand::Renaming:
        setOutcome({FtpOutcome::Done, outcome.check});
        break;
    }
    return false;
}

/// None of the questions needs the answer to another one, and a RNFR alone does nothing.
bool QFtpPrivate::askAboutIt(QFtpCommand& command)
{
    QStringList lines;
    if (pi.dtp().isChecksumWanted())
        lines << checksumQuestion(command.file);
    if (command.placing) {
        lines << question("SIZE", command.file);
        if (!command.placing->mayReplace)
            lines << question("SIZE", command.placing->destination);
        lines << question("RNFR", command.file);
    }
    if (lines.isEmpty())
        return false;
    command.step = QFtpCommand::Questions;
    pi.setQuestions();
    pi.sendCommands(lines);
    return true;
}

bool QFtpPrivate::giveName(QFtpCommand& command)
{
    if (!command.placing)
        return false;
    const bool isReady = m_answers.isWhole && m_answers.isNamed &&
                         (m_answers.isFree || command.placing->mayReplace) &&
                         outcome.check != FtpOutcome::Different;
    if (!isReady || (command.placing->isWanted && !command.placing->isWanted()))
        return false;
    command.step = QFtpCommand::Renaming;
    setOutcome({FtpOutcome::Unknown, outcome.check});
    pi.sendCommands({question("RNTO", command.placing->destination)});
    return true;
}

void QFtpPrivate::rewriteForProxy(QFtpCommand& command) const
{
    if (m_proxyHost.isEmpty())
        return;
    QString line = command.rawCmds.constFirst().trimmed() + QLatin1Char('@') + host;
    if (port != 0 && port != 21)
        line += QLatin1Char(':') + QString::number(port);
    command.rawCmds.first() = line + QLatin1String("\r\n");
}

void QFtpPrivate::_q_piFinished(const QString& text)
{
    QFtpCommand* const command = current();
    if (!command)
        return;
    if (command->command == QFtp::Close && state != QFtp::Unconnected) {
        m_isClosing = true;
        return pi.closeSoon();
    }
    if (goOn(*command))
        return;
    // Said of a folder that is not there, by servers that read patterns.
    const bool isMissing =
        command->command == QFtp::List && text.endsWith(QLatin1String("\r\n0 matches total"));
    if (isMissing) {
        error = QFtp::UnknownError;
        errorString = QFtp::tr("Listing directory failed:\n%1").arg(text);
    }
    finish(isMissing);
}

/// The current command is done, the next one begins.
void QFtpPrivate::finish(bool isError)
{
    const std::unique_ptr<QFtpCommand> command = std::move(pending.front());
    pending.pop_front();
    const bool isLast = pending.empty();
    pi.dtp().setDevice(nullptr, 0);
    if (QIODevice* const device = command->device(); device && command->command == QFtp::Put)
        device->disconnect(&pi.dtp());
    // One more may be put in the queue by whoever hears it, and is then started by that.
    Q_EMIT m_q->commandFinished(command->id, isError);
    if (isLast)
        Q_EMIT m_q->done(isError);
    else
        _q_startNextCommand();
}

QString QFtpPrivate::described(const QString& text) const
{
    switch (current()->command) {
    case QFtp::ConnectToHost:
        return QFtp::tr("Connecting to host failed:\n%1").arg(text);
    case QFtp::Login:
        return QFtp::tr("Login failed:\n%1").arg(withoutPassword(text, *current()));
    case QFtp::List:
        return QFtp::tr("Listing directory failed:\n%1").arg(text);
    case QFtp::Cd:
        return QFtp::tr("Changing directory failed:\n%1").arg(text);
    case QFtp::Get:
        return QFtp::tr("Downloading file failed:\n%1").arg(text);
    case QFtp::Put:
        return QFtp::tr("Uploading file failed:\n%1").arg(text);
    case QFtp::Remove:
        return QFtp::tr("Removing file failed:\n%1").arg(text);
    case QFtp::Mkdir:
        return QFtp::tr("Creating directory failed:\n%1").arg(text);
    case QFtp::Rmdir:
        return QFtp::tr("Removing directory failed:\n%1").arg(text);
    default:
        return text;
    }
}

void QFtpPrivate::_q_piError(int code, const QString& text)
{
    const QFtpCommand* const command = current();
    if (!command) {
        qCWarning(lcFtp, "QFtpPrivate::_q_piError was called without pending command!");
        return;
    }
    const QString line = pi.currentCommand();
    if (command->command == QFtp::Login && line.startsWith(QLatin1String("FEAT")) && state == QFtp::LoggedIn)
        return; // it knows no more than it has to
    if (command->step == QFtpCommand::Renaming && state != QFtp::Unconnected)
        setOutcome({FtpOutcome::Refused, outcome.check});
    if (command->command == QFtp::Get && line.startsWith(QLatin1String("SIZE "))) {
        pi.dtp().setBytesTotal(0);
        return;
    }
    // Many servers do not know the question; one that does and has no room says so before a byte goes.
    if (command->command == QFtp::Put && line.startsWith(QLatin1String("ALLO ")) && pi.replyCode() != noRoom)
        return;
    if (command->command == QFtp::Close && state == QFtp::Unconnected)
        return finish(false); // the server was faster
    error = QFtp::Error(code);
    errorString = described(text);
    pi.clearPendingCommands();
    dropWaiting(errorString, true); // what waited for this one goes with it
    finish(true);
}

void QFtpPrivate::_q_piConnectState(int newState)
{
    state = QFtp::State(newState);
    Q_EMIT m_q->stateChanged(state);
    if (state == QFtp::Unconnected && std::exchange(m_isClosing, false))
        _q_piFinished(QFtp::tr("Connection closed"));
}

void QFtpPrivate::dropWaiting(const QString& why, bool keepsClose)
{
    QList<int> dropped;
    std::erase_if(pending, [&](const auto& one) {
        const bool goes = one.get() != current() && !(keepsClose && one->command == QFtp::Close);
        if (goes)
            dropped.append(one->id);
        return goes;
    });
    for (const int id : std::as_const(dropped))
        Q_EMIT m_q->commandDropped(id, why);
}

void QFtpPrivate::abort()
{
    QFtpCommand* const command = current();
    if (!command)
        return;
    const QString why = QFtp::tr("Aborted");
    dropWaiting(why, true);
    const bool isIn =
        command->command == QFtp::Login && state == QFtp::LoggedIn; // and has one answer to come
    if (!command->isStarted)
        command->fault = why;
    else if (isIn)
        return;
    else if (command->command == QFtp::ConnectToHost || command->command == QFtp::Login)
        pi.drop(QFtp::NotConnected, why);
    else if (command->command != QFtp::Close)
        pi.abort(why);
}

} // namespace vantrel
