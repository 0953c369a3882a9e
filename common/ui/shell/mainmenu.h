#pragma once

#include "common/ui/toolkit/ztmenu.h"

class QUndoStack;

namespace vantrel {

class Scene;

/// The main menu. It enables its entries by the state of the link and tells what was chosen; the window and
/// its dialogs do the work. Starts as disconnected.
class MainMenu : public ZTMenu
{
    Q_OBJECT

public:
    /// scene and stack: find the server's system object and execute its commands; must outlive this.
    MainMenu(Scene* scene, QUndoStack* stack, QWidget* parent = nullptr);

    /// "Copy", "Cut", "Paste", "Duplicate", "Remove": for views that edit objects of the scene.
    ZTMenu* makeEditSubMenu();
    ZTMenu* makePanelSubMenu();
    /// Invokes the method without arguments on the server's system object, with the text for the undo
    /// history.
    void sendSystemCommand(const QString& method, const QString& text);

public Q_SLOTS:
    void handleConnected();
    void handleDisconnected();
    void rebootServer();
    void confirmDiagnostics();
    void saveDiagnostics();
    void openAboutDialog();

Q_SIGNALS:
    void connectClicked();
    void disconnectClicked();
    void rebootClicked();
    void clearShowClicked();
    void importShowClicked();
    void exportShowClicked();
    void notificationsClicked();
    void configurationClicked();
    void keyboardClicked();

private:
    void addEntries();

    Scene* m_scene;
    QUndoStack* m_stack;
    QAction* m_connect = nullptr;
    QAction* m_disconnect = nullptr;
    QAction* m_reboot = nullptr;
    QAction* m_clearShow = nullptr;
};

} // namespace vantrel
