#include "common/ui/clicktest/uifigures.h"

#include "common/session/link/previewthread.h"
#include "common/session/session.h"
#include "tarn/scene/scene.h"

#include <algorithm>
#include <ctime>

namespace vantrel {

namespace {

double mainThreadCpuMs()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

int surfacesInScene()
{
    const Session* session = Session::instance();
    const Object* surfaces = session ? session->getScene()->findObject("/device/surfaces") : nullptr;
    return surfaces ? surfaces->childCount() : 0;
}

} // namespace

UiFigures::UiFigures(QObject* parent)
    : QObject(parent)
{
    m_schedule.setFileName(QStringLiteral("/proc/thread-self/schedstat"));
    m_schedule.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    m_tick.setTimerType(Qt::PreciseTimer);
    m_tick.setInterval(1);
    connect(&m_tick, &QTimer::timeout, this, &UiFigures::tick);
    reset();
    if (const Session* session = Session::instance(); session && session->preview())
        connect(session->preview(), &PreviewThread::previewFrame, this, [this] { ++m_previewPictures; });
}

/// Milliseconds that this thread stood ready and other programs had the processors; 0 where the system does
/// not tell.
double UiFigures::waitedForProcessorMs()
{
    if (!m_schedule.isOpen() || !m_schedule.seek(0))
        return 0;
    return m_schedule.read(64).split(' ').value(1).toDouble() / 1e6;
}

void UiFigures::tick()
{
    const double stall = double(m_sinceTick.nsecsElapsed()) / 1e6 - m_tick.interval();
    const double waited = waitedForProcessorMs();
    m_longestStallMs = std::max(m_longestStallMs, stall);
    m_longestOwnStallMs = std::max(m_longestOwnStallMs, stall - (waited - m_waitedAtTick));
    m_sinceTick.start();
    m_waitedAtTick = waited;
}

void UiFigures::reset()
{
    m_longestStallMs = 0;
    m_longestOwnStallMs = 0;
    m_previewPictures = 0;
    m_sinceTick.start();
    m_waitedAtTick = waitedForProcessorMs();
    m_tick.start();
}

QJsonObject UiFigures::toJson() const
{
    return {{"longestStallMs", m_longestStallMs},
            {"longestOwnStallMs", m_longestOwnStallMs},
            {"previewPictures", m_previewPictures},
            {"mainThreadCpuMs", mainThreadCpuMs()},
            {"sceneSurfaces", surfacesInScene()}};
}

} // namespace vantrel
