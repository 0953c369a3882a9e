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
    QAction* disconnect = addEntry(QStringLiteral(":/icons/unlinked.svg"), tr("Disconnect from server"));
    disconnect->setObjectName(QStringLiteral("MainNavigationBar-mainmenu-DisconnectFromServer-action"));
    connect(disconnect, &QAction::triggered, this, &MainMenu::disconnectClicked);
    QAction* reboot = addEntry(QStringLiteral(":/icons/reboot.svg"), tr("Device Reboot"));
    reboot->setObjectName(QStringLiteral("MainNavigationBar-mainmenu-DeviceReboot-action"));
    connect(reboot, &QAction::triggered, this, &MainMenu::rebootClicked);
    m_whileConnected << disconnect << reboot;
    addSeparator();
    addShowEntries();
    addSeparator();
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

QAction* MainMenu::addShow(const QString& hotkey, const QString& icon, const QString& text,
                           const QString& name, void (MainMenu::*chosen)())
{
    QAction* action = addEntry(QStringLiteral(":/icons/%1.svg").arg(icon), text);
    action->setObjectName(QStringLiteral("MainNavigationBar-mainmenu-%1-action").arg(name));
    connect(action, &QAction::triggered, this, chosen);
    m_showActions.insert(hotkey, action);
    return action;
}

void MainMenu::addShowEntries()
{
    const auto add = [this](const char* hotkey, const char* icon, const QString& text, const char* name,
                            void (MainMenu::*chosen)()) {
        return addShow(QLatin1String(hotkey), QLatin1String(icon), text, QLatin1String(name), chosen);
    };
    m_whileConnected
        << add("clear_show", "close", tr("Clear show"), "ClearShow", &MainMenu::clearShowClicked)
        << add("open", "folder_open", tr("Shows on the server..."), "Shows", &MainMenu::showsClicked)
        << add("save", "check", tr("Save show"), "SaveShow", &MainMenu::saveShowClicked)
        << add("save_as", "copy", tr("Save show as..."), "SaveShowAs", &MainMenu::saveShowAsClicked)
        << add("revert_show", "undo", tr("Revert show"), "RevertShow", &MainMenu::revertShowClicked)
        << add("earlier_states", "undo_history", tr("Bring back an earlier state..."), "EarlierStates",
               &MainMenu::earlierStatesClicked);
    add("import_show", "import", tr("Import show"), "ImportShow", &MainMenu::importShowClicked);
    add("export_show", "export", tr("Export show"), "ExportShow", &MainMenu::exportShowClicked);
}

void MainMenu::handleConnected()
{
    m_connect->setEnabled(false);
    for (QAction* action : std::as_const(m_whileConnected))
        action->setEnabled(true);
}

void MainMenu::handleDisconnected()
{
    m_connect->setEnabled(true);
    for (QAction* action : std::as_const(m_whileConnected))
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
