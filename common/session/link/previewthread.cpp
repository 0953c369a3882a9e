#include "common/session/link/previewthread.h"

#include <utility>

namespace vantrel {

namespace {
constexpr std::chrono::seconds retryTime(1); // between two attempts
constexpr int silenceLimit = 4000;           // milliseconds

/// The picture in the screen's own pixel format, so that the main thread need not convert; null when the
/// surface is of another format or says more than its bytes hold.
QImage imageOf(const Surface* surface)
{
    if (!surface || surface->format != Surface::formatRgb24 || surface->width <= 0 || surface->height <= 0)
        return {};
    const qint64 line = surface->bytesPerLine;
    if (line < qint64(surface->width) * 3 || qint64(surface->pixels.size()) < line * surface->height)
        return {};
    const QImage wrapped(surface->pixels.data(), surface->width, surface->height, surface->bytesPerLine,
                         QImage::Format_RGB888);
    return wrapped.convertToFormat(QImage::Format_RGB32);
}
} // namespace

PreviewThread::PreviewThread(quint16 previewPort, QObject* parent)
    : QThread(parent)
    , m_previewPort(previewPort)
{
    setObjectName(QStringLiteral("preview"));
    m_client.addFrameCallback([this] { onFrameAvailable(); });
    connect(this, &PreviewThread::onPendingFrames, this, &PreviewThread::processPending);
    m_watch.setInterval(retryTime);
    connect(&m_watch, &QTimer::timeout, this, &PreviewThread::checkSilence);
}

PreviewThread::~PreviewThread()
{
    unsubscribe();
    requestInterruption();
    wait();
    m_end.see();
}

void PreviewThread::subscribe(const boost::asio::ip::address& address)
{
    const QMutexLocker alone(&m_subscribing);
    unsubscribe();
    requestInterruption();
    wait();
    m_end.see();
    {
        const QMutexLocker lock(&m_mutex);
        m_endpoint.emplace(address, m_previewPort);
    }
    start();
}

void PreviewThread::unsubscribe()
{
    {
        const QMutexLocker lock(&m_mutex);
        m_endpoint.reset();
        m_wake.notify_all();
    }
    m_client.disconnect();
}

void PreviewThread::setServerAnswers(bool answers)
{
    if (answers == m_serverAnswers)
        return;
    m_serverAnswers = answers;
    m_sinceFrame.start();
    answers ? m_watch.start() : m_watch.stop();
}

/// A stream that was cut without a word stays open for ever.
void PreviewThread::checkSilence()
{
    if (m_sinceFrame.elapsed() < silenceLimit || !endpoint())
        return;
    m_sinceFrame.start();
    m_client.disconnect(); // the thread opens it again
}

std::optional<boost::asio::ip::tcp::endpoint> PreviewThread::endpoint() const
{
    const QMutexLocker lock(&m_mutex);
    return m_endpoint;
}

void PreviewThread::run()
{
    const ThreadEnd::Work work(m_end);
    // Connecting here keeps a server that does not answer from holding up the scene link.
    while (!isInterruptionRequested()) {
        const auto target = endpoint();
        if (!target)
            return;
        if (m_client.connect(*target, 0, nullptr)) {
            if (endpoint())
                m_client.run();
            m_client.disconnect();
        }
        QMutexLocker lock(&m_mutex);
        if (m_endpoint)
            m_wake.wait_for(m_mutex, retryTime);
    }
}

void PreviewThread::onFrameAvailable()
{
    PreviewFrame frame;
    while (m_client.pollFrame(frame, 0)) {
        Pending next{frame, imageOf(frame.frame.getSurface()),
                     AudioLevels::fromSurface(frame.frame.getSurface())};
        bool post = false;
        {
            const QMutexLocker lock(&m_mutex);
            m_pending.push(std::move(next));
            post = !std::exchange(m_posted, true);
        }
        if (post)
            Q_EMIT onPendingFrames();
    }
}

void PreviewThread::processPending()
{
    m_sinceFrame.start();
    QMutexLocker lock(&m_mutex);
    m_posted = false;
    while (!m_pending.empty()) {
        Pending next = m_pending.take();
        if (!next.frame.frame.getSurface())
            return;
        if (next.image.isNull() && !next.levels)
            continue;
        lock.unlock();
        if (next.levels)
            Q_EMIT levelsChanged(next.frame.source, *next.levels);
        else
            Q_EMIT previewFrame(next.frame,
                                QPixmap::fromImage(std::move(next.image), Qt::NoFormatConversion));
        lock.relock();
    }
}

} // namespace vantrel
