#include "common/ui/toolkit/contextmenubutton.h"

#include <QMenu>
#include <QScreen>

namespace vantrel {

ContextMenuButton::ContextMenuButton(QWidget* parent)
    : ContextMenuButton(QStringLiteral("more"), parent)
{
}

ContextMenuButton::ContextMenuButton(const QString& icon, QWidget* parent)
    : IconButton(icon, {}, parent)
{
    connect(this, &ContextMenuButton::clicked, this, &ContextMenuButton::openMenu);
}

void ContextMenuButton::setContextMenu(QMenu* menu)
{
    m_menu = menu;
}

void ContextMenuButton::openMenu()
{
    if (!m_menu)
        return;
    QPoint at = mapToGlobal(QPoint(0, height()));
    const int needed = m_menu->sizeHint().height();
    if (at.y() + needed > screen()->availableGeometry().bottom())
        at.setY(mapToGlobal(QPoint(0, 0)).y() - needed);
    m_menu->popup(at);
}

} // namespace vantrel
