#pragma once

#include <QAccessibleWidget>

#include <functional>

namespace vantrel {

class SeekSlider;

/// The timeline, its playhead or one of its marks as a screen reader tells it: a slider whose value is a time
/// in seconds. Owned by Qt's cache of accessible objects; main thread.
class AccessibleTimeline : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    /// part: the slider or a child of it; time: what it stands at, in seconds.
    AccessibleTimeline(QWidget* part, SeekSlider* slider, std::function<double()> time);

    /// Lets Qt find this class for the parts of every slider; once is enough.
    static void install();

    QString text(QAccessible::Text kind) const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    QVariant currentValue() const override { return m_time(); }
    /// Seeks, as a drag of the playhead does.
    void setCurrentValue(const QVariant& seconds) override;
    QVariant minimumValue() const override;
    QVariant maximumValue() const override;
    QVariant minimumStepSize() const override { return 0.1; }

private:
    SeekSlider* m_slider;
    std::function<double()> m_time;
};

} // namespace vantrel
