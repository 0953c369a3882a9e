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
        return new AccessibleTimeline(part, slider, [slider] { return slider->position(); });
    }
    auto* slider = qobject_cast<SeekSlider*>(part->parentWidget());
    if (!slider)
        return nullptr;
    if (name == QLatin1String("vantrel::SeekSliderHandle"))
        return new AccessibleTimeline(part, slider, [slider] { return slider->position(); });
    if (name != QLatin1String("vantrel::SeekSliderMarker"))
        return nullptr;
    return new AccessibleTimeline(part, slider, [slider, part] {
        return part->objectName().endsWith(QLatin1String("-inMarker")) ? slider->inpoint()
                                                                       : slider->outpoint();
    });
}

} // namespace

AccessibleTimeline::AccessibleTimeline(QWidget* part, SeekSlider* slider, std::function<double()> time)
    : QAccessibleWidget(part, QAccessible::Slider)
    , m_slider(slider)
    , m_time(std::move(time))
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
    return SeekSlider::tr("%1 of %2").arg(timeText(m_time()), timeText(m_slider->duration()));
}

void* AccessibleTimeline::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ValueInterface)
        return static_cast<QAccessibleValueInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

void AccessibleTimeline::setCurrentValue(const QVariant& seconds)
{
    if (!m_slider->isEnabled())
        return;
    Q_EMIT m_slider->seekStarting();
    Q_EMIT m_slider->seekPosition(qBound(m_slider->inpoint(), seconds.toDouble(), m_slider->outpoint()));
    Q_EMIT m_slider->seekEnding();
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
