#include "common/ui/toolkit/ztmenu.h"

#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"

#include <QEvent>

namespace vantrel {

ZTMenu::ZTMenu(QWidget* parent)
    : ZTMenu(QString(), parent)
{
}

ZTMenu::ZTMenu(const QString& title, QWidget* parent)
    : QMenu(title, parent)
{
    setToolTipsVisible(true);
}

void ZTMenu::setObjectNames(const QString& base)
{
    setObjectName(base);
}

QAction* ZTMenu::addEntry(const QString& icon, const QString& text)
{
    QAction* action = addAction(text);
    followFontSize(action, [action, icon](FontSize) { action->setIcon(tintedIcon(icon)); });
    return action;
}

/// Open and disabled it would take all keys and clicks of the application and answer none: a lost link would
/// lock the window.
void ZTMenu::changeEvent(QEvent* event)
{
    QMenu::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        close();
}

} // namespace vantrel
