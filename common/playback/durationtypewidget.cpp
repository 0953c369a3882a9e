#include "common/playback/durationtypewidget.h"

#include "common/ui/toolkit/pushbutton.h"

#include <QButtonGroup>
#include <QHBoxLayout>

namespace vantrel {

DurationTypeWidget::DurationTypeWidget(QWidget* parent)
    : ZTFrame(parent)
    , m_group(new QButtonGroup(this))
    , m_infinite(new PushButton(tr("Infinite"), this))
    , m_manual(new PushButton(tr("Time:"), this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    for (PushButton* button : {m_infinite, m_manual}) {
        button->setCheckable(true);
        button->setStyleClass(QStringLiteral("segment"));
        layout->addWidget(button);
    }
    m_infinite->setToolTip(tr("Set duration: Infinite"));
    m_manual->setToolTip(tr("Set duration: Manual"));
    m_group->addButton(m_infinite, Infinite);
    m_group->addButton(m_manual, Manual);
    m_infinite->setChecked(true);

    connect(m_group, &QButtonGroup::idToggled, this, [this](int id, bool checked) {
        if (!checked)
            return;
        m_type = static_cast<DurationType>(id);
        Q_EMIT durationTypeChanged();
    });
    connect(m_group, &QButtonGroup::buttonReleased, this, &DurationTypeWidget::durationTypeToggled);
}

void DurationTypeWidget::setDurationType(DurationType type)
{
    if (QAbstractButton* button = m_group->button(type))
        button->setChecked(true);
}

void DurationTypeWidget::setObjectNames(const QString& base)
{
    const QString name = base + QStringLiteral("-Input");
    setObjectName(name);
    m_infinite->setObjectName(name + QStringLiteral("-infinite-duration-button"));
    m_manual->setObjectName(name + QStringLiteral("-manual-duration-button"));
}

} // namespace vantrel
