#include "common/ui/shell/mainmenu.h"

#include "common/command/execute.h"
#include "common/command/invokemethodcommand.h"
#include "common/ui/diagnostics/diagnosticsmanager.h"
#include "common/ui/shell/aboutdialog.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "tarn/scene/scene.h"

#include <QCoreApplication>

namespace vantrel {

MainMenu::MainMenu(Scene* scene, QUndoStack* stack, QWidget* parent)
    : ZTMenu(parent)
    , m_scene(scene)
    , m_stack(stack)
{
    setObjectName(QStringLiteral("MainNavigationBar-mainmenu"));
    addEntries();
    handleDisconnected();
}

void MainMenu::addEntries()
{
    m_connect = addEntry(QStringLiteral(":/icons/linked.svg"), tr("Connect to server..."));
    m_connect->setObjectName(QStringLiteral("MainNavigationBar-mainmenu-ConnectToServer-action"));
    connect(m_connect, &QAction::triggered, this, &MainMenu::connectClicked);
    m_disconnect = addEntry(QStringLiteral(":/icons/unlinked.svg"), tr("Disconnect from server"));
    m_disconnect->setObjectName(QStringLiteral("MainNavigationBar-mainmenu-DisconnectFromServer-action"));
    connect(m_disconnect, &QAction::triggered, this, &MainMenu::disconnectClicked);
    m_reboot = addEntry(QStringLiteral(":/icons/reboot.svg"), tr("Device Reboot"));
    m_reboot->setObjectName(QStringLiteral("MainNavigationBar-mainmenu-DeviceReboot-action"));
    connect(m_reboot, &QAction::triggered, this, &MainMenu::rebootClicked);
    addSeparator();
    m_clearShow = addEntry(QStringLiteral(":/icons/close.svg"), tr("Clear show"));
    m_clearShow->setObjectName(QStringLiteral("MainNavigationBar-mainmenu-ClearShow-action"));
    connect(m_clearShow, &QAction::triggered, this, &MainMenu::clearShowClicked);
    connect(addEntry(QStringLiteral(":/icons/import.svg"), tr("Import show")), &QAction::triggered, this,
            &MainMenu::importShowClicked);
    connect(addEntry(QStringLiteral(":/icons/export.svg"), tr("Export show")), &QAction::triggered, this,
            &MainMenu::exportShowClicked);
    connect(addEntry(QStringLiteral(":/icons/diagnostics.svg"), tr("Save diagnostics...")),
            &QAction::triggered, this, &MainMenu::confirmDiagnostics);
    connect(addEntry(QStringLiteral(":/icons/info.svg"), tr("Notifications")), &QAction::triggered, this,
            &MainMenu::notificationsClicked);
    connect(addEntry(QStringLiteral(":/icons/configuration.svg"), tr("Configuration")), &QAction::triggered,
            this, &MainMenu::configurationClicked);
    connect(addEntry(QStringLiteral(":/icons/keyboard.svg"), tr("Keyboard")), &QAction::triggered, this,
            &MainMenu::keyboardClicked);
    connect(addEntry(QStringLiteral(":/icons/question.svg"), tr("About")), &QAction::triggered, this,
            &MainMenu::openAboutDialog);
    connect(addAction(tr("Exit")), &QAction::triggered, this, [] { QCoreApplication::quit(); });
}

void MainMenu::handleConnected()
{
    m_connect->setEnabled(false);
    for (QAction* action : {m_disconnect, m_reboot, m_clearShow})
        action->setEnabled(true);
}

void MainMenu::handleDisconnected()
{
    m_connect->setEnabled(true);
    for (QAction* action : {m_disconnect, m_reboot, m_clearShow})
        action->setEnabled(false);
}

void MainMenu::rebootServer()
{
    sendSystemCommand(QStringLiteral("reboot"), tr("Reboot the server"));
}

void MainMenu::confirmDiagnostics()
{
    auto* dialog = new ConfirmationDialog(
        tr("Save diagnostics"),
        tr("The log files of this application and a description of this machine will be saved to one file."),
        tr("SAVE"), parentWidget());
    dialog->setObjectNames(QStringLiteral("DiagnosticsDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &ZTDialog::confirmed, this, &MainMenu::saveDiagnostics, Qt::QueuedConnection);
    dialog->open();
}

void MainMenu::saveDiagnostics()
{
    DiagnosticsManager().saveDiagnostics();
}

void MainMenu::openAboutDialog()
{
    auto* dialog = new AboutDialog(parentWidget());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void MainMenu::sendSystemCommand(const QString& method, const QString& text)
{
    Object* system = m_scene->findObject("/device/system");
    execute<InvokeMethodCommand>(m_stack, qPrintable(method), system, method, VariantMap(), text);
}

ZTMenu* MainMenu::makeEditSubMenu()
{
    auto* menu = new ZTMenu(tr("Edit Object"), this);
    for (const QString& text : {tr("Copy"), tr("Cut"), tr("Paste"), tr("Duplicate"), tr("Remove")})
        menu->addAction(text);
    return menu;
}

ZTMenu* MainMenu::makePanelSubMenu()
{
    return new ZTMenu(tr("Panels"), this);
}

} // namespace vantrel
