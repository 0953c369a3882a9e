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

using Mark = AccessibleTimeline::Mark;

QAccessibleInterface* make(const QString& name, QObject* object)
{
    auto* part = qobject_cast<QWidget*>(object);
    if (!part)
        return nullptr;
    if (name == QLatin1String("vantrel::SeekSlider")) {
        auto* slider = static_cast<SeekSlider*>(part);
        return new AccessibleTimeline(part, slider, Mark::Playhead);
    }
    auto* slider = qobject_cast<SeekSlider*>(part->parentWidget());
    if (!slider)
        return nullptr;
    if (name == QLatin1String("vantrel::SeekSliderHandle"))
        return new AccessibleTimeline(part, slider, Mark::Playhead);
    if (name != QLatin1String("vantrel::SeekSliderMarker"))
        return nullptr;
    const bool isIn = part->objectName().endsWith(QLatin1String("-inMarker"));
    return new AccessibleTimeline(part, slider, isIn ? Mark::In : Mark::Out);
}

} // namespace

AccessibleTimeline::AccessibleTimeline(QWidget* part, SeekSlider* slider, Mark mark)
    : QAccessibleWidget(part, QAccessible::Slider)
    , m_slider(slider)
    , m_mark(mark)
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
    if (m_mark == Mark::Playhead ? !m_slider->isMovable() : !m_slider->areMarksMovable())
        return;
    switch (m_mark) {
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

double AccessibleTimeline::time() const
{
    return m_mark == Mark::In    ? m_slider->inpoint()
           : m_mark == Mark::Out ? m_slider->outpoint()
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
