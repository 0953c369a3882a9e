#pragma once

#include "common/ui/toolkit/ztframe.h"

class QButtonGroup;

namespace vantrel {

class PushButton;

/// Whether a still image stands for ever or for a time. Owned by DurationEditWidget; main thread.
class DurationTypeWidget : public ZTFrame
{
    Q_OBJECT

public:
    enum DurationType { Infinite = 0, Manual = 1 };
    Q_ENUM(DurationType)

    explicit DurationTypeWidget(QWidget* parent = nullptr);

    DurationType durationType() const { return m_type; }
    void setDurationType(DurationType type);
    /// base + "-Input" for this widget, that + "-infinite-duration-button" and "-manual-duration-button".
    void setObjectNames(const QString& base) override;

Q_SIGNALS:
    /// Any change.
    void durationTypeChanged();
    /// The operator's click alone, after the change.
    void durationTypeToggled();

private:
    QButtonGroup* m_group;
    PushButton* m_infinite;
    PushButton* m_manual;
    DurationType m_type = Infinite;
};

} // namespace vantrel
