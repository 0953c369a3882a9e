#include "common/views/pendingdropsbar.h"

#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/views/slotdrops.h"

#include <QHBoxLayout>

namespace vantrel {

PendingDropsBar::PendingDropsBar(SlotDrops* drops, QWidget* parent)
    : ZTFrame(parent)
    , m_drops(drops)
    , m_label(new ElidedLabel(this))
{
    setObjectName(QStringLiteral("MediaPanel-pending"));
    m_label->setObjectName(QStringLiteral("MediaPanel-pending-text"));
    m_label->setTextFormat(Qt::PlainText);
    auto* giveUp = new IconButton(QStringLiteral("close"), {}, this);
    giveUp->setObjectName(QStringLiteral("MediaPanel-pending-cancel-button"));
    giveUp->setToolTip(tr("Give up this drop: nothing of it goes into slots"));
    giveUp->setAccessibleName(tr("Give up this drop"));
    connect(giveUp, &QAbstractButton::clicked, this, [this] { m_drops->givePendingUp(); });
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(4, 0, 0, 0);
    row->setSpacing(4);
    row->addWidget(m_label, 1);
    row->addWidget(giveUp);
    connect(drops, &SlotDrops::arrivalsChanged, this, &PendingDropsBar::follow);
    follow();
}

void PendingDropsBar::follow()
{
    const QString text = m_drops->pendingText();
    setVisible(!text.isEmpty());
    if (!text.isEmpty())
        m_label->setText(text);
}

} // namespace vantrel
