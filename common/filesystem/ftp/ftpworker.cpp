#include "common/filesystem/ftp/ftpworker.h"

#include "common/filesystem/ftp/qftpcommand.h"

#include <QFile>
#include <QMutexLocker>

#include <utility>

namespace vantrel {

namespace {
constexpr qint64 smallTransfer = 256 * 1024; // bytes
constexpr int timeTold = 213;                // an answer
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
    connect(&ftp, &QFtp::outcomeChanged, &ftp, [&] {
        const QMutexLocker lock(&m_mutex);
        m_outcome = ftp.outcome();
        m_outcomeId = ftp.currentId();
    });
    connect(&ftp, &QFtp::fileSize, this, &FtpWorker::fileSize, Qt::DirectConnection);
    connect(&ftp, &QFtp::rawCommandReply, &ftp, [this](int code, const QString& text) {
        if (code == timeTold)
            Q_EMIT fileModified(text.trimmed());
    });
    connect(&ftp, &QFtp::commandFinished, &ftp, [&](int id, bool error) {
        onCommandFinished(id, error ? ftp.error() : QFtp::NoError, error ? ftp.errorString() : QString());
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

int FtpWorker::transfer(QIODevice* device, Call call)
{
    if (!isRunning())
        return 0;
    if (device->thread() != this)
        device->moveToThread(this);
    const int id = QFtpCommand::nextId();
    post([this, id, device, call = std::move(call)](QFtp& ftp) {
        m_device = device;
        m_deviceId = id;
        m_isPresized = false;
        ftp.setNextId(id);
        call(ftp);
    });
    return id;
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

int FtpWorker::put(QIODevice* device, const QString& path, QFtp::TransferType type, qint64 offset)
{
    return transfer(device, [=](QFtp& ftp) { ftp.put(device, path, type, offset); });
}

int FtpWorker::putAndPlace(QIODevice* device, const QString& path, const FtpPlacing& placing)
{
    return transfer(device, [=](QFtp& ftp) { ftp.put(device, path, placing); });
}

int FtpWorker::get(const QString& path, QIODevice* device, QFtp::TransferType type, qint64 offset)
{
    return transfer(device, [=](QFtp& ftp) { ftp.get(path, device, type, offset); });
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
    post([](QFtp& ftp) {
        ftp.abort(); // what runs may be hours away from its end
        ftp.close();
    });
}

void FtpWorker::abort()
{
    post([](QFtp& ftp) { ftp.abort(); });
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
    return id == m_outcomeId ? m_outcome : FtpOutcome();
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
    tellHeld();
    if (m_device && id == m_deviceId)
        returnDevice(error != QFtp::NoError);
    if (id == m_listing.id)
        Q_EMIT listInfo(std::exchange(m_listing, {}));
    Q_EMIT commandFinished(id, error != QFtp::NoError);
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
