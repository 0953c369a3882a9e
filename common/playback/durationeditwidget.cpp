#include "common/playback/durationeditwidget.h"

#include "common/ui/style/spacing.h"
#include "common/ui/timecode/timecodeedit.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHBoxLayout>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

/// What a still is offered that has no duration of its own yet.
constexpr double defaultSeconds = 10.0;

ClockTime toClockTime(double seconds)
{
    constexpr double limit = 1e12;
    return std::isfinite(seconds) ? static_cast<ClockTime>(std::clamp(seconds, -limit, limit) * 1000) : 0;
}

/// Equal up to a relative 1e-12, so that the server's echo of a value counts as the same.
bool areEqual(double a, double b)
{
    return std::min(std::abs(a), std::abs(b)) >= std::abs(a - b) * 1e12;
}

} // namespace

DurationEditWidget::DurationEditWidget(QWidget* parent)
    : ZTFrame(parent)
    , m_label(new ZTLabel(tr("Duration:"), this))
    , m_type(new DurationTypeWidget(this))
    , m_time(new TimecodeEdit(this))
{
    m_label->setStyleClass(QStringLiteral("dim"));
    m_time->setDecimals(1);
    m_time->setMinTimecode(500);
    m_time->setTimecode(toClockTime(m_durationSeconds));
    m_time->setToolTip(tr("Double-click a field, or press Return, to edit the duration"));

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::normal);
    layout->addWidget(m_label);
    layout->addWidget(m_type);
    layout->addWidget(m_time);
    layout->addStretch(1);

    connect(m_time, &TimecodeEdit::timecodeEdited, this, [this] {
        m_durationSeconds = static_cast<double>(m_time->timecode()) / 1000.0;
        Q_EMIT durationEdited();
    });
    connect(m_type, &DurationTypeWidget::durationTypeChanged, this, [this] {
        updateTimeEnabled();
        Q_EMIT durationTypeChanged();
    });
    connect(m_type, &DurationTypeWidget::durationTypeToggled, this, &DurationEditWidget::durationEdited);
    updateTimeEnabled();
}

void DurationEditWidget::setDurationSeconds(double seconds)
{
    if (!(seconds > 0.0))
        seconds = defaultSeconds;
    if (areEqual(seconds, m_durationSeconds))
        return;
    m_durationSeconds = seconds;
    Q_EMIT durationSecondsChanged();
    m_time->setTimecode(toClockTime(seconds));
}

DurationTypeWidget::DurationType DurationEditWidget::durationType() const
{
    return m_type->durationType();
}

void DurationEditWidget::setDurationType(DurationTypeWidget::DurationType type)
{
    m_type->setDurationType(type);
}

void DurationEditWidget::setColumnStep(ColumnStep step)
{
    m_label->setVisible(step == ColumnStep::Wide);
}

void DurationEditWidget::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_type->setObjectNames(base);
    m_time->setObjectNames(base + QStringLiteral("-Time"));
}

void DurationEditWidget::updateTimeEnabled()
{
    m_time->setEnabled(m_type->durationType() == DurationTypeWidget::Manual);
    m_time->repaint();
}

} // namespace vantrel
