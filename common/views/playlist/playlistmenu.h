#pragma once

#include "common/ui/toolkit/ztmenu.h"

#include <QPointer>

namespace vantrel {

class PlaylistEditorModel;
class PlaylistSelectionModel;

/// What can be done with the selected entries of a playlist and with the playlist itself; what else there is
/// stands in two menus inside it. What is possible is found out each time that it opens. Owned by the editor.
class PlaylistMenu : public ZTMenu
{
    Q_OBJECT

public:
    explicit PlaylistMenu(QWidget* parent = nullptr);

    /// Both may be null, and then little is offered. Each connection may bring others.
    void setModels(PlaylistEditorModel* model, PlaylistSelectionModel* selection);
    /// Without a server to send edits to, only what changes nothing is offered.
    void setEditable(bool editable) { m_editable = editable; }
    /// Whether the clipboard holds what can be pasted, and the media panel what can be inserted.
    void setOffers(bool paste, bool insert);
    /// Enables what is possible now.
    void refresh();

Q_SIGNALS:
    void doPreview();
    void doRenumber();
    void doMoveUp();
    void doMoveDown();
    void doRemove();
    void doRenamePlaylist();
    void doClearList();
    void doCut();
    void doCopy();
    void doPaste();
    /// An action of the key map.
    void doAction(const QString& name);
    void doDuplicatePlaylist();
    void doRemovePlaylist();
    void doImport();
    void doExport();
    void doPrint();
    /// Before what is possible is found out.
    void aboutToRefresh();

protected:
    void showEvent(QShowEvent* event) override;

private:
    QAction* add(ZTMenu* menu, const char* icon, const QString& text, const char* name,
                 void (PlaylistMenu::*signal)(), const char* key = nullptr);
    QAction* addKeyed(ZTMenu* menu, const char* icon, const QString& text, const char* name, const char* key);
    void addEntryMenu();
    void addListMenu();

    QPointer<PlaylistEditorModel> m_model;
    QPointer<PlaylistSelectionModel> m_selection;
    bool m_editable = true;
    bool m_canPaste = false;
    bool m_canInsert = false;
    QAction* m_preview;
    QAction* m_renumber;
    QAction* m_moveUp;
    QAction* m_moveDown;
    QAction* m_remove;
    QAction* m_rename;
    QAction* m_clear;
    QAction* m_insert = nullptr;
    QAction* m_insertBefore = nullptr;
    QAction* m_replace = nullptr;
    QAction* m_transition = nullptr;
    QAction* m_transitionTime = nullptr;
    QAction* m_endAction = nullptr;
    QAction* m_cut = nullptr;
    QAction* m_copy = nullptr;
    QAction* m_paste = nullptr;
    QAction* m_duplicate = nullptr;
    QAction* m_removeList = nullptr;
    QAction* m_import = nullptr;
    QAction* m_export = nullptr;
    QAction* m_print = nullptr;
};

} // namespace vantrel
