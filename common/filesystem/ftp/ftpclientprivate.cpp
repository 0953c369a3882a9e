#include "common/filesystem/ftp/ftpclient_p.h"
#include "common/filesystem/ftp/ftplogging.h"
#include "common/filesystem/model/pathhelpers.h"

#include <QIODevice>

#include <algorithm>
#include <utility>

namespace vantrel {

using namespace std::chrono_literals;

namespace {

constexpr auto keepaliveInterval = 60000ms;
constexpr auto maxReconnectDelay = 60000ms;

QFtp::State stateOf(int state)
{
    return static_cast<QFtp::State>(state);
}

} // namespace

void FtpClientPrivate::DeleteLater::operator()(FtpWorker* worker) const
{
    worker->shutDown();
    worker->deleteLater();
}

FtpClientPrivate::FtpClientPrivate(FtpClient* q)
    : m_q(q)
    , m_worker(new FtpWorker)
{
    const auto how = Qt::QueuedConnection;
    FtpWorker* const worker = m_worker.get();
    connect(worker, &FtpWorker::commandFinished, this, &FtpClientPrivate::onFtpCommandFinished, how);
    connect(worker, &FtpWorker::stateChanged, this, &FtpClientPrivate::onFtpStateChanged, how);
    connect(worker, &FtpWorker::listInfo, this, &FtpClientPrivate::onFtpListInfo, how);
    connect(worker, &FtpWorker::commandStarted, this, &FtpClientPrivate::onFtpCommandStarted, how);
    connect(worker, &FtpWorker::dataTransferProgress, this, &FtpClientPrivate::onDataTransferProgressed, how);
    connect(worker, &FtpWorker::followUpDropped, this, &FtpClientPrivate::onFollowUpDropped, how);
    connect(
        worker, &FtpWorker::fileSize, this, [this](qint64 bytes) { m_fileSize = bytes; }, how);
    connect(
        worker, &FtpWorker::fileModified, this, [this](const QString& time) { m_modified = time; }, how);
    connect(&m_keepaliveTimer, &QTimer::timeout, this, &FtpClientPrivate::onKeepaliveTimer);
    connect(&m_reconnectTimer, &QTimer::timeout, this, &FtpClientPrivate::onReconnectTimer);
    m_keepaliveTimer.start(keepaliveInterval);
    m_reconnectTimer.setSingleShot(true);
    worker->start(QThread::InheritPriority);
}

FtpClientPrivate::~FtpClientPrivate() = default;

void FtpClientPrivate::setKeepaliveInterval(std::chrono::milliseconds interval)
{
    m_keepaliveTimer.start(interval);
}

bool FtpClientPrivate::isServerConnected() const
{
    return !m_isLeaving && (m_lastState == QFtp::Connected || m_lastState == QFtp::LoggedIn);
}

bool FtpClientPrivate::isLoading() const
{
    return m_active.id != 0 || m_followUp.id != 0 ||
           (m_lastState != QFtp::Unconnected && m_lastState != QFtp::LoggedIn);
}

// ------------------------------------------------------------------ the connection

bool FtpClientPrivate::connectToServer(const QString& host, int port)
{
    qCDebug(lcFtp) << "About to connect to FTP server" << host << port
                   << "- Current state:" << stateOf(m_lastState);
    const bool isStarting = m_active.command == QFtp::ConnectToHost;
    // An end may take seconds; it begins anew behind that.
    if (m_isLeaving && (m_lastState != QFtp::Unconnected || isStarting)) {
        m_host = host;
        m_port = port;
        m_isReconnectEnabled = true;
        m_reconnectAttempts = 0;
        return true;
    }
    if (m_lastState == QFtp::Connecting || m_lastState == QFtp::HostLookup || isStarting) {
        qCWarning(lcFtp, "Unable to connect to the FTP server (connection in progress)");
        return false;
    }
    if (isServerConnected()) {
        qCWarning(lcFtp, "Unable to connect to the FTP server (connection already established)");
        return false;
    }
    m_isLeaving = false;
    m_host = host;
    m_port = port;
    startConnecting();
    return true;
}

void FtpClientPrivate::startConnecting()
{
    m_reconnectTimer.stop();
    setActiveCommand(QFtp::ConnectToHost, m_worker->connectToHost(m_host, static_cast<quint16>(m_port)));
}

bool FtpClientPrivate::disconnectServer()
{
    m_isReconnectEnabled = false;
    m_reconnectTimer.stop();
    qCDebug(lcFtp) << "About to close FTP. Current state:" << stateOf(m_lastState);
    const bool isStarting = m_active.command == QFtp::ConnectToHost;
    if ((m_lastState == QFtp::Unconnected && !isStarting) || m_lastState == QFtp::Closing)
        return false;
    m_isLeaving = true;
    m_active.aborted = m_active.id != 0;
    m_worker->disconnectServer();
    return true;
}

void FtpClientPrivate::onFtpStateChanged(int state)
{
    const int before = std::exchange(m_lastState, state);
    qCDebug(lcFtp) << "FTP state changed from" << stateOf(before) << "to" << stateOf(state);
    if (before == state)
        return;
    // Who hears that the server is there may ask it at once.
    if (state == QFtp::LoggedIn && m_active.command == QFtp::Login)
        clearActiveCommand();
    if (before != QFtp::LoggedIn)
        Q_EMIT m_q->isLoadingChanged(isLoading());
    switch (state) {
    case QFtp::Unconnected:
        return handleUnconnected();
    case QFtp::HostLookup:
        if (m_isLeaving)
            return;
        if (!std::exchange(m_isReconnectEnabled, true))
            m_reconnectAttempts = 0;
        return;
    case QFtp::Connected:
        return login();
    case QFtp::LoggedIn:
        qCDebug(lcFtp, "FTP is now connected");
        Q_EMIT m_q->isLoadingChanged(isLoading());
        Q_EMIT m_q->isServerConnectedChanged(true);
        return;
    case QFtp::Connecting:
    case QFtp::Closing:
        return;
    default:
        qCWarning(lcFtp) << "Unhandled FTP state:" << state;
    }
}

void FtpClientPrivate::login()
{
    if (m_isLeaving)
        return;
    qCDebug(lcFtp, "Requesting FTP login...");
    setActiveCommand(QFtp::Login, m_worker->login(m_credentials.username, m_credentials.password));
}

/// The attempts are not counted anew after a login: a server that drops the connection again and again is
/// approached more and more slowly.
void FtpClientPrivate::handleUnconnected()
{
    m_isLeaving = false;
    qCDebug(lcFtp, "FTP is now disconnected");
    Q_EMIT m_q->isServerConnectedChanged(false);
    if (!m_isReconnectEnabled)
        return;
    ++m_reconnectAttempts;
    const auto delay = std::min<std::chrono::milliseconds>(
        m_reconnectUnit * m_reconnectAttempts * m_reconnectAttempts, maxReconnectDelay);
    qCDebug(lcFtp).nospace() << "Reconnecting to " << m_host << ":" << m_port << " in " << delay.count()
                             << " ms";
    m_reconnectTimer.start(delay);
}

void FtpClientPrivate::onReconnectTimer()
{
    if (m_lastState == QFtp::Unconnected && m_active.command != QFtp::ConnectToHost)
        startConnecting();
}

void FtpClientPrivate::onKeepaliveTimer()
{
    if (m_lastState != QFtp::LoggedIn || m_active.id != 0)
        return;
    qCDebug(lcFtp, "Sending keepalive command");
    m_worker->noop();
}

// ------------------------------------------------------------------ requests

void FtpClientPrivate::setActiveCommand(QFtp::Command command, int id, const QVariantList& parameters)
{
    if (id == m_active.id)
        return;
    const CommandRequest previous = std::exchange(m_active, {command, id, parameters, false});
    qCDebug(lcFtp) << "Changed current active FTP command request:" << m_active << ", previous:" << previous;
    if ((previous.id == 0) != (id == 0))
        Q_EMIT m_q->isLoadingChanged(isLoading());
}

void FtpClientPrivate::setActiveCommand(QFtp::Command command, int id, const QVariant& parameter)
{
    setActiveCommand(command, id, QVariantList{parameter});
}

void FtpClientPrivate::clearActiveCommand()
{
    setActiveCommand(QFtp::None, 0);
}

bool FtpClientPrivate::list(const QString& path)
{
    const int id = m_worker->list(path);
    m_listing = {id, path, {}, {}, {}};
    setActiveCommand(QFtp::List, id, QVariant(path));
    return true;
}

bool FtpClientPrivate::remove(const QString& path)
{
    // A link is a name in its folder, whatever it leads to.
    const bool isSymLink = known(path).value_or(FtpListing::Kind()).isSymLink;
    const ClientFileSystemType type = isSymLink ? ClientFileSystemType::File : getPathType(path);
    if (type == ClientFileSystemType::File)
        setActiveCommand(QFtp::Remove, m_worker->removeFile(isSymLink ? pathKey(path) : path),
                         QVariant(path));
    else if (type == ClientFileSystemType::Directory)
        setActiveCommand(QFtp::Rmdir, m_worker->removeDirectory(path), QVariant(path));
    else
        return false;
    return true;
}

bool FtpClientPrivate::create(const QString& path, ClientFileSystemType type)
{
    if (type == ClientFileSystemType::File) {
        qCWarning(lcFtp, "Unimplemented code.");
        return false;
    }
    if (type != ClientFileSystemType::Directory) {
        qCWarning(lcFtp) << "Unknown create operation type for path" << path;
        return false;
    }
    setActiveCommand(QFtp::Mkdir, m_worker->createDirectory(path), QVariant(path));
    return true;
}

/// The new name stands beside the old one, not below it.
bool FtpClientPrivate::rename(const QString& path, const QString& newName)
{
    const QString to = createJoinedPath(getParentPath(path), newName, false);
    setActiveCommand(QFtp::Rename, m_worker->rename(path, to), {path, to, false});
    return true;
}

bool FtpClientPrivate::move(const QString& from, const QString& to)
{
    setActiveCommand(QFtp::Rename, m_worker->rename(from, to), {from, to, true});
    return true;
}

bool FtpClientPrivate::write(const QString& path, QIODevice* device, qint64 offset)
{
    return startWriting(m_worker->put(device, path, QFtp::Binary, offset, predecessor()), {path});
}

bool FtpClientPrivate::writeAndPlace(const QString& path, QIODevice* device, const FtpPlacing& placing)
{
    return startWriting(m_worker->putAndPlace(device, path, placing, predecessor()),
                        {path, placing.destination});
}

bool FtpClientPrivate::startWriting(int id, const QVariantList& paths)
{
    // Something may stand there whatever comes of it.
    if (id != 0)
        rememberPath(paths.constFirst().toString(), ClientFileSystemType::File);
    return startTransfer(QFtp::Put, id, paths);
}

bool FtpClientPrivate::startTransfer(QFtp::Command command, int id, const QVariantList& paths)
{
    const bool isFollowUp = std::exchange(m_isFollowUpDue, false);
    if (id == 0)
        return false;
    if (isFollowUp) {
        m_followUp = {command, id, paths, false};
    } else {
        m_transferId = id;
        setActiveCommand(command, id, paths);
    }
    return true;
}

/// Of the transfer that is being asked for; 0: it begins at once.
int FtpClientPrivate::predecessor() const
{
    return m_isFollowUpDue ? m_active.id : 0;
}

bool FtpClientPrivate::takeFollowUp()
{
    const bool isTransfer = m_active.command == QFtp::Get || m_active.command == QFtp::Put;
    m_isFollowUpDue = isTransfer && m_active.id != 0 && !m_active.aborted && m_followUp.id == 0;
    return m_isFollowUpDue;
}

void FtpClientPrivate::dropFollowUp()
{
    if (m_followUp.id != 0)
        m_worker->dropFollowUp(m_followUp.id);
}

void FtpClientPrivate::onFollowUpDropped(int id)
{
    if (id != m_followUp.id)
        return;
    m_followUp = {};
    if (!isLoading())
        Q_EMIT m_q->isLoadingChanged(false);
    Q_EMIT m_q->followUpDropped();
}

bool FtpClientPrivate::read(const QString& path, QIODevice* device, qint64 offset)
{
    return startTransfer(QFtp::Get, m_worker->get(path, device, QFtp::Binary, offset, predecessor()), {path});
}

bool FtpClientPrivate::resume(const QString& path, QIODevice* device, qint64 offset, QFtp::Command command)
{
    if (offset < 0 || device->isSequential() || !device->seek(offset)) {
        m_isFollowUpDue = false;
        return false;
    }
    return command == QFtp::Put ? write(path, device, offset) : read(path, device, offset);
}

bool FtpClientPrivate::size(const QString& path)
{
    m_fileSize = -1;
    setActiveCommand(QFtp::Size, m_worker->size(path), QVariant(path));
    return true;
}

bool FtpClientPrivate::modified(const QString& path)
{
    m_modified.clear();
    setActiveCommand(QFtp::RawCommand, m_worker->modified(path), QVariant(path));
    return true;
}

void FtpClientPrivate::abort()
{
    qCDebug(lcFtp) << "Requesting abort for the current FTP operation:" << m_active;
    m_active.aborted = true;
    m_worker->abort(m_active.id);
}

// ------------------------------------------------------------------ answers

void FtpClientPrivate::onFtpListInfo(const FtpListing& listing)
{
    m_keepaliveTimer.start();
    if (m_listing.id != listing.id)
        qCWarning(lcFtp, "Received FTP list info event, but no active file listing is running");
    else
        m_listing = listing;
}

void FtpClientPrivate::finishFileListing(bool succeeded)
{
    FtpListing listing = std::exchange(m_endedListing, {});
    if (succeeded)
        m_listed[pathKey(listing.path)] = std::move(listing.kinds);
    qCDebug(lcFtp) << "Finished directory" << listing.path << "listing with" << listing.entries.size()
                   << "entries. Succeeded:" << succeeded;
    m_prepared = std::move(listing.listing);
    Q_EMIT m_q->listFinished(listing.path, listing.entries, succeeded);
    m_prepared.reset();
}

ClientListing FtpClientPrivate::takeListing(const QList<ClientFileSystemInfo>& entries)
{
    return m_prepared ? *std::exchange(m_prepared, std::nullopt) : ClientListing(entries);
}

void FtpClientPrivate::onFtpCommandStarted(int id)
{
    qCDebug(lcFtp) << "Started FTP command with ID:" << id << "- Current request:" << m_active;
    m_keepaliveTimer.start();
}

void FtpClientPrivate::onFtpCommandFinished(int id, bool error, qint64 done, qint64 total)
{
    if (done >= 0 && id == m_active.id)
        onDataTransferProgressed(done, total);
    const CommandRequest request = m_active;
    m_keepaliveTimer.start();
    if (error) {
        QString text;
        const QFtp::Error code = m_worker->getError(&text);
        if (id == request.id)
            m_errorText = text;
        QString said;
        QDebug(&said) << "Failed FTP command request with ID:" << id << "- Current request:" << request
                      << ", error:" << code << "=" << text;
        // A server that is not there, a lost link and what was aborted are ordinary states.
        if (request.aborted || code == QFtp::ConnectionRefused || code == QFtp::NotConnected ||
            code == QFtp::NoError)
            qCInfo(lcFtp).noquote() << said;
        else if (request.command == QFtp::Size)
            qCDebug(lcFtp).noquote() << said; // that a file is not there is an answer
        else
            qCWarning(lcFtp).noquote() << said;
    } else {
        qCDebug(lcFtp) << "Finished FTP command request with ID:" << id << "- Current request:" << request;
        if (id == request.id)
            m_errorText.clear();
    }
    if (request.id == 0 || id != request.id)
        return;
    // Who hears that the client is free may ask for the next one at once.
    if (request.command == QFtp::List)
        m_endedListing = std::exchange(m_listing, {});
    if (error || m_followUp.id == 0) {
        clearActiveCommand();
        finishCommand(request, !error && !request.aborted);
    } else {
        const CommandRequest next = std::exchange(m_followUp, {});
        setActiveCommand(next.command, next.id, next.parameters);
        Q_EMIT m_q->followUpBegan();
        finishCommand(request, !request.aborted);
        m_transferId = next.id; // whoever heard of the end may have asked for the outcome
    }
}

void FtpClientPrivate::finishCommand(const CommandRequest& request, bool succeeded)
{
    const QString path = request.path();
    switch (request.command) {
    case QFtp::ConnectToHost:
        return finishConnecting();
    case QFtp::Login:
        if (!succeeded && m_lastState == QFtp::Connected)
            m_worker->disconnectServer(); // nothing can be done with it; it is tried again later
        return;
    case QFtp::List:
        if (request.id == m_endedListing.id)
            return finishFileListing(succeeded);
        qCWarning(lcFtp) << "FTP list operation" << request.id
                         << "finished, but it didn't match the last file listing operation"
                         << m_endedListing.id;
        return;
    case QFtp::Get:
        Q_EMIT m_q->readFinished(path, succeeded);
        return;
    case QFtp::Put:
        if (m_worker->outcome(request.id).placed == FtpOutcome::Done) {
            rememberPath(request.path(1), ClientFileSystemType::File);
            forgetPath(path);
        }
        Q_EMIT m_q->writeFinished(path, succeeded);
        return;
    case QFtp::Remove:
    case QFtp::Rmdir:
        if (succeeded)
            forgetPath(path);
        Q_EMIT m_q->removeFinished(path,
                                   request.command == QFtp::Remove ? ClientFileSystemType::File
                                                                   : ClientFileSystemType::Directory,
                                   succeeded);
        return;
    case QFtp::Mkdir:
        if (succeeded)
            rememberPath(path, ClientFileSystemType::Directory);
        Q_EMIT m_q->createFinished(path, ClientFileSystemType::Directory, succeeded);
        return;
    case QFtp::Rename:
        return finishRename(request, succeeded);
    case QFtp::Size:
        Q_EMIT m_q->sizeFinished(path, m_fileSize, succeeded && m_fileSize >= 0);
        return;
    case QFtp::RawCommand:
        Q_EMIT m_q->modifiedFinished(path, m_modified, succeeded && !m_modified.isEmpty());
        return;
    default:
        qCWarning(lcFtp) << "Unhandled post clean-up for finished command" << request;
    }
}

/// What was left before it began has no state that tells of its end.
void FtpClientPrivate::finishConnecting()
{
    if (m_lastState == QFtp::Unconnected && std::exchange(m_isLeaving, false) && m_isReconnectEnabled)
        startConnecting();
}

void FtpClientPrivate::finishRename(const CommandRequest& request, bool succeeded)
{
    const QString from = request.path(0);
    const QString to = request.path(1);
    const ClientFileSystemType type = getPathType(from);
    if (succeeded) {
        rememberPath(to, type, known(from).value_or(FtpListing::Kind()).isSymLink);
        forgetPath(from);
    }
    if (request.parameters.value(2).toBool())
        Q_EMIT m_q->moveFinished(from, to, type, succeeded);
    else
        Q_EMIT m_q->renameFinished(to, type, succeeded);
}

void FtpClientPrivate::onDataTransferProgressed(qint64 done, qint64 total)
{
    if (m_active.command == QFtp::Get)
        Q_EMIT m_q->readProgressed(m_active.path(), done, total);
    else if (m_active.command == QFtp::Put)
        Q_EMIT m_q->writeProgressed(m_active.path(), done, total);
    else
        return;
    m_keepaliveTimer.start();
}

// ------------------------------------------------------------------ what is known of paths

QString FtpClientPrivate::pathKey(const QString& path)
{
    return path.size() > 1 && path.endsWith(QLatin1Char('/')) ? path.chopped(1) : path;
}

void FtpClientPrivate::rememberPath(const QString& path, ClientFileSystemType type, bool isSymLink)
{
    const QString key = pathKey(path);
    m_pathTypes.insert(key, {type, isSymLink});
    if (const auto directory = m_listed.find(pathKey(getParentPath(key))); directory != m_listed.end())
        directory->insert(getNameInPath(key), {type, isSymLink});
}

void FtpClientPrivate::forgetPath(const QString& path)
{
    const QString key = pathKey(path);
    m_pathTypes.remove(key);
    if (const auto directory = m_listed.find(pathKey(getParentPath(key))); directory != m_listed.end())
        directory->remove(getNameInPath(key));
}

/// A listing has the last word, but not every server lists what is hidden.
std::optional<FtpListing::Kind> FtpClientPrivate::known(const QString& path) const
{
    const QString key = pathKey(path);
    const auto directory = m_listed.constFind(pathKey(getParentPath(key)));
    if (directory != m_listed.cend()) {
        if (const auto found = directory->constFind(getNameInPath(key)); found != directory->cend())
            return *found;
    }
    const auto made = m_pathTypes.constFind(key);
    return made == m_pathTypes.cend() ? std::nullopt : std::optional(*made);
}

ClientFileSystemType FtpClientPrivate::getPathType(const QString& path) const
{
    if (const std::optional<FtpListing::Kind> kind = known(path))
        return kind->type;
    qCDebug(lcFtp, "Unimplemented code.");
    return path.endsWith(QLatin1Char('/')) ? ClientFileSystemType::Directory : ClientFileSystemType::Unknown;
}

} // namespace vantrel
