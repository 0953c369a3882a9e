#pragma once

#include <QAccessibleWidget>

namespace vantrel {

class SeekSlider;

/// The timeline, its playhead or one of its marks as a screen reader tells it: a slider whose value is a time
/// in seconds. Owned by Qt's cache of accessible objects; main thread.
class AccessibleTimeline : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    /// part: the slider or a child of it.
    AccessibleTimeline(QWidget* part, SeekSlider* slider, bool isPoint);

    /// Lets Qt find this class for the parts of every slider; once is enough.
    static void install();

    QString text(QAccessible::Text kind) const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    QVariant currentValue() const override { return time(); }
    /// As a drag of the playhead or of the mark does, within the same bounds; what no hand can move stays.
    void setCurrentValue(const QVariant& seconds) override;
    QVariant minimumValue() const override;
    QVariant maximumValue() const override;
    QVariant minimumStepSize() const override { return 0.1; }

private:
    enum class Mark { Playhead, In, Out };
    Mark mark() const;
    double time() const;

    SeekSlider* m_slider;
    bool m_isPoint; // the in or the out point
};

} // namespace vantrel
