#pragma once

#include "common/ui/toolkit/ztmenu.h"

#include <QList>
#include <QMap>

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
    /// What the hotkeys of shows do, by their names; it does nothing while it is disabled.
    const QMap<QString, QAction*>& showActions() const { return m_showActions; }

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
    void showsClicked();
    void saveShowClicked();
    void saveShowAsClicked();
    void revertShowClicked();
    void earlierStatesClicked();
    void clearShowClicked();
    void importShowClicked();
    void exportShowClicked();
    void notificationsClicked();
    void configurationClicked();
    void keyboardClicked();

private:
    void addEntries();
    void addShowEntries();
    QAction* addShow(const QString& hotkey, const QString& icon, const QString& text, const QString& name,
                     void (MainMenu::*chosen)());

    Scene* m_scene;
    QUndoStack* m_stack;
    QAction* m_connect = nullptr;
    QMap<QString, QAction*> m_showActions;
    QList<QAction*> m_whileConnected;
};

} // namespace vantrel
