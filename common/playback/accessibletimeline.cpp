#include "common/playback/accessibletimeline.h"

#include "common/playback/seekslider.h"
#include "common/session/settings/timeutils.h"
#include "util/clocktime.h"

namespace vantrel {

namespace {

QString timeText(double seconds)
{
    return TimeUtils::formatClockTime(clocktime::fromSeconds(seconds));
}

QAccessibleInterface* make(const QString& name, QObject* object)
{
    auto* part = qobject_cast<QWidget*>(object);
    if (!part)
        return nullptr;
    if (name == QLatin1String("vantrel::SeekSlider")) {
        auto* slider = static_cast<SeekSlider*>(part);
        return new AccessibleTimeline(part, slider, false);
    }
    auto* slider = qobject_cast<SeekSlider*>(part->parentWidget());
    if (!slider)
        return nullptr;
    if (name == QLatin1String("vantrel::SeekSliderHandle"))
        return new AccessibleTimeline(part, slider, false);
    if (name != QLatin1String("vantrel::SeekSliderMarker"))
        return nullptr;
    return new AccessibleTimeline(part, slider, true);
}

} // namespace

AccessibleTimeline::AccessibleTimeline(QWidget* part, SeekSlider* slider, bool isPoint)
    : QAccessibleWidget(part, QAccessible::Slider)
    , m_slider(slider)
    , m_isPoint(isPoint)
{
}

void AccessibleTimeline::install()
{
    [[maybe_unused]] static const bool once = [] {
        QAccessible::installFactory(make);
        return true;
    }();
}

QString AccessibleTimeline::text(QAccessible::Text kind) const
{
    if (kind != QAccessible::Value)
        return QAccessibleWidget::text(kind);
    return SeekSlider::tr("%1 of %2").arg(timeText(time()), timeText(m_slider->duration()));
}

void* AccessibleTimeline::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ValueInterface)
        return static_cast<QAccessibleValueInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

void AccessibleTimeline::setCurrentValue(const QVariant& seconds)
{
    const double wanted = seconds.toDouble();
    if (m_isPoint ? !m_slider->areMarksMovable() : !m_slider->isMovable())
        return;
    switch (mark()) {
    case Mark::In:
        Q_EMIT m_slider->inpointSet(qBound(0.0, wanted, m_slider->outpoint()));
        break;
    case Mark::Out:
        Q_EMIT m_slider->outpointSet(qBound(m_slider->inpoint(), wanted, m_slider->duration()));
        break;
    case Mark::Playhead:
        Q_EMIT m_slider->seekStarting();
        Q_EMIT m_slider->seekPosition(qBound(m_slider->inpoint(), wanted, m_slider->outpoint()));
        Q_EMIT m_slider->seekEnding();
        break;
    }
}

/// By a name that is given after this is made.
AccessibleTimeline::Mark AccessibleTimeline::mark() const
{
    if (!m_isPoint)
        return Mark::Playhead;
    return object()->objectName().endsWith(QLatin1String("-inMarker")) ? Mark::In : Mark::Out;
}

double AccessibleTimeline::time() const
{
    const Mark stands = mark();
    return stands == Mark::In    ? m_slider->inpoint()
           : stands == Mark::Out ? m_slider->outpoint()
                                 : m_slider->position();
}

QVariant AccessibleTimeline::minimumValue() const
{
    return 0.0;
}

QVariant AccessibleTimeline::maximumValue() const
{
    return m_slider->duration();
}

} // namespace vantrel
