#include "common/filesystem/ftp/ftpworker.h"

#include "common/filesystem/ftp/qftpcommand.h"

#include <QFile>
#include <QMutexLocker>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {
constexpr qint64 smallTransfer = 256 * 1024; // bytes
constexpr int timeTold = 213;                // an answer

// Set as the library is loaded, while there is one thread: those that Qt makes wait by poll() then. GLib's
// loop wakes itself with each socket that is opened, closed or turned to, which is a third of the time of a
// small file.
[[maybe_unused]] const bool isWithoutGlib = qputenv("QT_NO_THREADED_GLIB", "1");
} // namespace

FtpWorker::FtpWorker(QObject* parent)
    : QThread(parent)
    , m_home(QThread::currentThread())
{
    setObjectName(QStringLiteral("ftp"));
    qRegisterMetaType<FtpListing>();
}

FtpWorker::~FtpWorker()
{
    shutDown();
}

void FtpWorker::run()
{
    QFtp ftp;
    ftp.setTransferMode(QFtp::Passive);
    connect(&ftp, &QFtp::dataTransferProgress, &ftp,
            [&](qint64 done, qint64 total) { onDataTransferProgress(ftp, done, total); });
    connect(&ftp, &QFtp::stateChanged, &ftp, [this](int state) {
        m_state = QFtp::State(state);
        Q_EMIT stateChanged(state);
    });
    connect(&ftp, &QFtp::listInfo, &ftp, [this](const QUrlInfo& info) { m_listing.add(info); });
    connect(&ftp, &QFtp::commandStarted, &ftp, [&](int id) {
        m_heldStart = id;
        if (ftp.currentCommand() != QFtp::Get && ftp.currentCommand() != QFtp::Put)
            tellHeld();
    });
    connect(&ftp, &QFtp::outcomeChanged, &ftp, [&] { noteOutcome(ftp.currentId(), ftp.outcome()); });
    connect(&ftp, &QFtp::fileSize, this, &FtpWorker::fileSize, Qt::DirectConnection);
    connect(&ftp, &QFtp::rawCommandReply, &ftp, [this](int code, const QString& text) {
        if (code == timeTold)
            Q_EMIT fileModified(text.trimmed());
    });
    connect(&ftp, &QFtp::commandFinished, &ftp, [&](int id, bool error) {
        onCommandFinished(id, error ? ftp.error() : QFtp::NoError, error ? ftp.errorString() : QString());
        if (const Transfer next = std::exchange(m_followUp, {}); next.id != 0)
            error ? drop(next) : begin(ftp, next);
    });
    connect(&ftp, &QFtp::commandDropped, &ftp,
            [this](int id, const QString& why) { onCommandFinished(id, QFtp::UnknownError, why); });
    {
        const QMutexLocker lock(&m_mutex);
        m_ftp = &ftp;
        for (Call& call : std::exchange(m_early, {}))
            QMetaObject::invokeMethod(&ftp, [&ftp, call = std::move(call)] { call(ftp); });
    }
    exec();
    const QMutexLocker lock(&m_mutex);
    m_ftp = nullptr;
    m_state = QFtp::Unconnected;
}

void FtpWorker::post(Call call)
{
    const QMutexLocker lock(&m_mutex);
    if (m_ftp)
        QMetaObject::invokeMethod(m_ftp, [ftp = m_ftp, call = std::move(call)] { call(*ftp); });
    else
        m_early.push_back(std::move(call));
}

int FtpWorker::command(Call call)
{
    const int id = QFtpCommand::nextId();
    post([id, call = std::move(call)](QFtp& ftp) {
        ftp.setNextId(id);
        call(ftp);
    });
    return id;
}

int FtpWorker::transfer(QIODevice* device, int after, Call call)
{
    if (!isRunning())
        return 0;
    if (device->thread() != this)
        device->moveToThread(this);
    const int id = QFtpCommand::nextId();
    post([this, after, transfer = Transfer{id, device, std::move(call)}](QFtp& ftp) {
        if (after == 0 || (after == m_endedId && !m_hasFailed))
            begin(ftp, transfer);
        else if (after == ftp.currentId())
            m_followUp = transfer;
        else
            drop(transfer);
    });
    return id;
}

void FtpWorker::begin(QFtp& ftp, Transfer transfer)
{
    m_device = transfer.device;
    m_deviceId = transfer.id;
    m_isPresized = false;
    ftp.setNextId(transfer.id);
    transfer.call(ftp);
}

void FtpWorker::drop(const Transfer& transfer)
{
    if (transfer.id == 0)
        return;
    transfer.device->moveToThread(m_home);
    Q_EMIT followUpDropped(transfer.id);
}

int FtpWorker::connectToHost(const QString& host, quint16 port)
{
    return command([=](QFtp& ftp) { ftp.connectToHost(host, port); });
}

int FtpWorker::login(const QString& user, const QString& password)
{
    return command([=](QFtp& ftp) { ftp.login(user, password); });
}

int FtpWorker::list(const QString& path)
{
    const int id = QFtpCommand::nextId();
    post([this, id, path](QFtp& ftp) {
        m_listing = {id, path, {}, {}, {}};
        ftp.setNextId(id);
        ftp.list(path);
    });
    return id;
}

int FtpWorker::removeFile(const QString& path)
{
    return command([=](QFtp& ftp) { ftp.remove(path); });
}

int FtpWorker::removeDirectory(const QString& path)
{
    return command([=](QFtp& ftp) { ftp.rmdir(path); });
}

int FtpWorker::createDirectory(const QString& path)
{
    return command([=](QFtp& ftp) { ftp.mkdir(path); });
}

int FtpWorker::rename(const QString& from, const QString& to)
{
    return command([=](QFtp& ftp) { ftp.rename(from, to); });
}

int FtpWorker::put(QIODevice* device, const QString& path, QFtp::TransferType type, qint64 offset, int after)
{
    return transfer(device, after, [=](QFtp& ftp) { ftp.put(device, path, type, offset); });
}

int FtpWorker::putAndPlace(QIODevice* device, const QString& path, const FtpPlacing& placing, int after)
{
    return transfer(device, after, [=](QFtp& ftp) { ftp.put(device, path, placing); });
}

int FtpWorker::get(const QString& path, QIODevice* device, QFtp::TransferType type, qint64 offset, int after)
{
    return transfer(device, after, [=](QFtp& ftp) { ftp.get(path, device, type, offset); });
}

int FtpWorker::size(const QString& path)
{
    return command([=](QFtp& ftp) { ftp.size(path); });
}

int FtpWorker::modified(const QString& path)
{
    return command([=](QFtp& ftp) { ftp.modified(path); });
}

void FtpWorker::disconnectServer()
{
    post([this](QFtp& ftp) {
        drop(std::exchange(m_followUp, {}));
        ftp.abort(); // what runs may be hours away from its end
        ftp.close();
    });
}

void FtpWorker::abort(int id)
{
    post([this, id](QFtp& ftp) {
        drop(std::exchange(m_followUp, {}));
        if (id != m_endedId)
            ftp.abort();
    });
}

void FtpWorker::dropFollowUp(int id)
{
    post([this, id](QFtp&) {
        if (m_followUp.id == id)
            drop(std::exchange(m_followUp, {}));
    });
}

void FtpWorker::noop()
{
    post([](QFtp& ftp) { ftp.noop(); });
}

void FtpWorker::setPatience(std::chrono::milliseconds patience)
{
    post([=](QFtp& ftp) { ftp.setPatience(patience); });
}

void FtpWorker::setRateLimit(qint64 bytesPerSecond)
{
    post([=](QFtp& ftp) { ftp.setRateLimit(bytesPerSecond); });
}

QFtp::Error FtpWorker::getError(QString* text) const
{
    const QMutexLocker lock(&m_mutex);
    *text = m_errorText;
    return m_error;
}

FtpOutcome FtpWorker::outcome(int id) const
{
    const QMutexLocker lock(&m_mutex);
    const auto found = std::ranges::find(m_outcomes, id, &std::pair<int, FtpOutcome>::first);
    return found == m_outcomes.end() ? FtpOutcome() : found->second;
}

void FtpWorker::noteOutcome(int id, FtpOutcome outcome)
{
    const QMutexLocker lock(&m_mutex);
    if (m_outcomes[0].first != id)
        m_outcomes[1] = m_outcomes[0];
    m_outcomes[0] = {id, outcome};
}

/// A download has its full size on the disk from the start.
void FtpWorker::onDataTransferProgress(const QFtp& ftp, qint64 done, qint64 total)
{
    auto* const file = qobject_cast<QFile*>(ftp.currentDevice());
    if (ftp.currentCommand() == QFtp::Get && file && done == 0 && total >= 1)
        m_isPresized = file->resize(total);
    m_heldProgress.emplace_back(done, total);
    if (total > smallTransfer || done > smallTransfer || m_heldProgress.size() > 2)
        tellHeld();
}

void FtpWorker::tellHeld()
{
    if (const int id = std::exchange(m_heldStart, 0))
        Q_EMIT commandStarted(id);
    for (const auto& [done, total] : std::exchange(m_heldProgress, {}))
        Q_EMIT dataTransferProgress(done, total);
}

void FtpWorker::onCommandFinished(int id, QFtp::Error error, const QString& text)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_error = error;
        m_errorText = text;
    }
    m_endedId = id;
    m_hasFailed = error != QFtp::NoError;
    const bool isTransfer = m_device && id == m_deviceId;
    std::pair<qint64, qint64> reached{-1, 0};
    if (!isTransfer || m_heldProgress.empty()) {
        tellHeld();
    } else {
        reached = m_heldProgress.back();
        m_heldProgress.clear();
        m_heldStart = 0;
    }
    if (isTransfer)
        returnDevice(error != QFtp::NoError);
    if (id == m_listing.id) {
        const FtpListing listing = std::exchange(m_listing, {});
        // A part of one is no answer; a large one would be freed on the main thread.
        Q_EMIT listInfo(m_hasFailed ? FtpListing{id, listing.path, {}, {}, {}} : listing);
    }
    Q_EMIT commandFinished(id, error != QFtp::NoError, reached.first, reached.second);
}

void FtpWorker::returnDevice(bool error)
{
    QIODevice* const device = std::exchange(m_device, nullptr);
    // What never came is no part of the file.
    if (auto* const file = qobject_cast<QFile*>(device); file && error && m_isPresized)
        file->resize(file->pos());
    device->moveToThread(m_home);
}

void FtpWorker::shutDown()
{
    quit();
    wait();
}

} // namespace vantrel
