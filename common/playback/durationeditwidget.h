#pragma once

#include "common/playback/columnstep.h"
#include "common/playback/durationtypewidget.h"

namespace vantrel {

class TimecodeEdit;
class ZTLabel;

/// How long a still image stands: for ever, or at least half a second in tenths. Owned by PlaybackWidget;
/// main thread.
class DurationEditWidget : public ZTFrame
{
    Q_OBJECT
    Q_PROPERTY(
        double durationSeconds READ durationSeconds WRITE setDurationSeconds NOTIFY durationSecondsChanged)
    Q_PROPERTY(vantrel::DurationTypeWidget::DurationType durationType READ durationType WRITE setDurationType
                   NOTIFY durationTypeChanged)

public:
    explicit DurationEditWidget(QWidget* parent = nullptr);

    double durationSeconds() const { return m_durationSeconds; }
    /// A still that has no duration yet (0) is offered ten seconds.
    void setDurationSeconds(double seconds);
    DurationTypeWidget::DurationType durationType() const;
    void setDurationType(DurationTypeWidget::DurationType type);
    void setObjectNames(const QString& base) override;
    void setColumnStep(ColumnStep step);

Q_SIGNALS:
    /// The operator changed the time or the type.
    void durationEdited();
    void durationSecondsChanged();
    void durationTypeChanged();

private:
    void updateTimeEnabled();

    ZTLabel* m_label;
    DurationTypeWidget* m_type;
    TimecodeEdit* m_time;
    double m_durationSeconds = 10.0;
};

} // namespace vantrel
