#include "common/views/playlist/playlistmenu.h"

#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistselectionmodel.h"
#include "common/ui/keyboard/hotkeys.h"

#include <QAction>

namespace vantrel {

PlaylistMenu::PlaylistMenu(QWidget* parent)
    : ZTMenu(parent)
{
    setObjectNames(QStringLiteral("PlaylistEditor-PlaylistMenu"));
    m_preview = add(this, "mc_play", tr("Preview"), "Preview", &PlaylistMenu::doPreview, "cue");
    m_renumber = add(this, "", tr("Renumber"), "Renumber", &PlaylistMenu::doRenumber, "renumber_entries");
    m_moveUp = add(this, "move_up", tr("Move up"), "MoveUp", &PlaylistMenu::doMoveUp, "move_entries_up");
    m_moveDown =
        add(this, "move_down", tr("Move down"), "MoveDown", &PlaylistMenu::doMoveDown, "move_entries_down");
    m_remove = add(this, "close", tr("Remove"), "Remove", &PlaylistMenu::doRemove, "delete");
    addEntryMenu();
    addSeparator();
    m_rename = add(this, "", tr("Rename playlist"), "Rename", &PlaylistMenu::doRenamePlaylist, "rename");
    m_clear = add(this, "close", tr("Clear playlist"), "Clear", &PlaylistMenu::doClearList);
    addListMenu();
}

void PlaylistMenu::addEntryMenu()
{
    auto* menu = new ZTMenu(tr("Edit"), this);
    menu->setObjectNames(objectName() + QStringLiteral("-Edit"));
    addMenu(menu);
    m_insert = addKeyed(menu, "insert_after", tr("Insert what is selected in the media panel"), "Insert",
                        "insert_media");
    m_insertBefore = addKeyed(menu, "", tr("Insert it in front"), "InsertBefore", "insert_media_before");
    m_replace = addKeyed(menu, "", tr("Replace by it"), "Replace", "replace_by_media");
    menu->addSeparator();
    m_transition = addKeyed(menu, "", tr("Transition..."), "Transition", "edit_transition");
    m_transitionTime = addKeyed(menu, "", tr("Transition time..."), "TransitionTime", "edit_transition_time");
    m_endAction = addKeyed(menu, "", tr("End action..."), "EndAction", "edit_end_action");
    addKeyed(menu, "", tr("Show in the order of the list"), "ListOrder", "list_order");
    menu->addSeparator();
    m_cut = add(menu, "", tr("Cut"), "Cut", &PlaylistMenu::doCut, "cut");
    m_copy = add(menu, "copy", tr("Copy"), "Copy", &PlaylistMenu::doCopy, "copy");
    m_paste = add(menu, "", tr("Paste"), "Paste", &PlaylistMenu::doPaste, "paste");
}

void PlaylistMenu::addListMenu()
{
    auto* menu = new ZTMenu(tr("List"), this);
    menu->setObjectNames(objectName() + QStringLiteral("-List"));
    addMenu(menu);
    addKeyed(menu, "playlist", tr("All playlists..."), "AllPlaylists", "all_playlists");
    menu->addSeparator();
    m_duplicate =
        add(menu, "copy", tr("Duplicate playlist"), "Duplicate", &PlaylistMenu::doDuplicatePlaylist);
    m_import = add(menu, "import", tr("Import from CSV..."), "Import", &PlaylistMenu::doImport);
    m_export = add(menu, "export", tr("Export as CSV..."), "Export", &PlaylistMenu::doExport);
    m_print = add(menu, "file", tr("Cue sheet as PDF..."), "Print", &PlaylistMenu::doPrint);
    menu->addSeparator();
    m_removeList =
        add(menu, "trash", tr("Remove playlist..."), "RemoveList", &PlaylistMenu::doRemovePlaylist);
}

QAction* PlaylistMenu::add(ZTMenu* menu, const char* icon, const QString& text, const char* name,
                           void (PlaylistMenu::*signal)(), const char* key)
{
    const QString drawing = QLatin1String(icon);
    QAction* action = drawing.isEmpty() ? menu->addAction(text) : menu->addEntry(drawing, text);
    action->setObjectName(QStringLiteral("PlaylistEditor-PlaylistMenu-%1-Action").arg(QLatin1String(name)));
    if (key) {
        // Shown only: the list itself answers to the key, where it has the focus.
        action->setProperty("key", QLatin1String(key));
        action->setShortcutContext(Qt::WidgetShortcut);
    }
    if (signal)
        connect(action, &QAction::triggered, this, signal);
    return action;
}

QAction* PlaylistMenu::addKeyed(ZTMenu* menu, const char* icon, const QString& text, const char* name,
                                const char* key)
{
    QAction* action = add(menu, icon, text, name, nullptr, key);
    connect(action, &QAction::triggered, this, [this, key] { Q_EMIT doAction(QLatin1String(key)); });
    return action;
}

void PlaylistMenu::setModels(PlaylistEditorModel* model, PlaylistSelectionModel* selection)
{
    m_model = model;
    m_selection = selection;
}

void PlaylistMenu::setOffers(bool paste, bool insert)
{
    m_canPaste = paste;
    m_canInsert = insert;
}

void PlaylistMenu::refresh()
{
    Q_EMIT aboutToRefresh();
    const QList<QModelIndex> rows = m_selection ? m_selection->sortedSelectedRows() : QList<QModelIndex>();
    const int last = m_model ? m_model->rowCount() - 1 : -1;
    const bool hasRows = !rows.isEmpty();
    const bool hasList = m_model && m_model->hasPlaylist();
    m_preview->setEnabled(rows.size() == 1);
    m_renumber->setEnabled(m_editable && hasRows);
    m_moveUp->setEnabled(m_editable && hasRows && rows.first().row() > 0 &&
                         m_model->isRoomForInsertBefore(rows, 1));
    m_moveDown->setEnabled(m_editable && hasRows && rows.last().row() < last &&
                           m_model->isRoomForInsertAfter(rows, 1));
    m_remove->setEnabled(m_editable && hasRows);
    m_rename->setEnabled(m_editable);
    m_clear->setEnabled(m_editable && last >= 0);
    m_insert->setEnabled(m_editable && m_canInsert);
    for (QAction* action : {m_insertBefore, m_replace})
        action->setEnabled(m_editable && m_canInsert && hasRows);
    for (QAction* action : {m_transition, m_transitionTime, m_endAction})
        action->setEnabled(m_editable && hasRows);
    m_cut->setEnabled(m_editable && hasRows);
    m_copy->setEnabled(hasRows);
    m_paste->setEnabled(m_editable && m_canPaste);
    m_import->setEnabled(m_editable);
    for (QAction* action : {m_duplicate, m_removeList})
        action->setEnabled(m_editable && hasList);
    for (QAction* action : {m_export, m_print})
        action->setEnabled(hasList && last >= 0);
}

void PlaylistMenu::showEvent(QShowEvent* event)
{
    const auto showKeys = [](const QMenu* menu) {
        for (QAction* action : menu->actions()) {
            if (const QString name = action->property("key").toString(); !name.isEmpty())
                action->setShortcut(Hotkeys::current(name));
        }
    };
    showKeys(this);
    for (const QMenu* menu : findChildren<QMenu*>())
        showKeys(menu);
    refresh();
    ZTMenu::showEvent(event);
}

} // namespace vantrel
