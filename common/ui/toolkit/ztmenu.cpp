#include "common/ui/toolkit/ztmenu.h"

#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"

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

} // namespace vantrel
