#include "common/ui/shell/statusbarmenu.h"

namespace vantrel {

StatusBarMenu::StatusBarMenu(QWidget* parent)
    : ZTMenu(parent)
{
    setObjectName(QStringLiteral("StatusBar-menu"));
    QAction* manage = addEntry(QStringLiteral("linked"), tr("Connection management"));
    manage->setObjectName(QStringLiteral("StatusBar-menu-ConnectionManagement-action"));
    m_disconnect = addEntry(QStringLiteral("unlinked"), tr("Disconnect"));
    m_disconnect->setObjectName(QStringLiteral("StatusBar-menu-Disconnect-action"));
    m_disconnect->setEnabled(false);
    connect(manage, &QAction::triggered, this, [this] { Q_EMIT displayDialog(); });
    connect(m_disconnect, &QAction::triggered, this, [this] { Q_EMIT disconnect(); });
}

void StatusBarMenu::onConnected()
{
    m_disconnect->setEnabled(true);
}

void StatusBarMenu::onDisconnected()
{
    m_disconnect->setEnabled(false);
}

} // namespace vantrel
