#include "common/views/playlist/nextentrylabel.h"

#include "common/views/playlist/listclock.h"

namespace vantrel {

NextEntryLabel::NextEntryLabel(Session* session, QWidget* parent)
    : ElidedLabel(parent)
    , m_clock(ListClock::ofProgram(session))
{
    setAccessibleName(tr("What comes next on program"));
    setStyleClass(QStringLiteral("section"));
    connect(m_clock, &ListClock::courseChanged, this, &NextEntryLabel::refresh);
    refresh();
}

void NextEntryLabel::refresh()
{
    setVisible(m_clock->rundown().kind() != Rundown::Kind::None);
    const QString next = m_clock->nextName();
    QString text = next.isEmpty() ? tr("Last entry of the playlist") : tr("Next: %1").arg(next);
    if (m_clock->rundown().kind() == Rundown::Kind::Removed)
        text = tr("%1 was removed. %2").arg(QString::fromStdString(m_clock->playing().toString(false)), text);
    setText(text);
}

} // namespace vantrel
