#include "common/ui/uifigures.h"

#include "common/session/previewthread.h"
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
    m_tick.setTimerType(Qt::PreciseTimer);
    connect(&m_tick, &QTimer::timeout, this, [this] {
        m_longestStallMs =
            std::max(m_longestStallMs, double(m_sinceTick.nsecsElapsed()) / 1e6 - m_tick.interval());
        m_sinceTick.start();
    });
    m_sinceTick.start();
    m_tick.start(1);
    if (const Session* session = Session::instance(); session && session->preview())
        connect(session->preview(), &PreviewThread::previewFrame, this, [this] { ++m_previewPictures; });
}

void UiFigures::reset()
{
    m_longestStallMs = 0;
    m_previewPictures = 0;
    m_sinceTick.start();
    m_tick.start();
}

QJsonObject UiFigures::toJson() const
{
    return {{"longestStallMs", m_longestStallMs},
            {"previewPictures", m_previewPictures},
            {"mainThreadCpuMs", mainThreadCpuMs()},
            {"sceneSurfaces", surfacesInScene()}};
}

} // namespace vantrel
