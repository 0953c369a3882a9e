#include "common/views/playlist/playlisteditor.h"

#include "common/command/execute.h"
#include "common/command/refusal.h"
#include "common/media/address/entryaddressutils.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistlibrarymodel.h"
#include "common/media/models/playlist/playlistpayload.h"
#include "common/media/models/playlist/playlistselectionmodel.h"
#include "common/session/link/linkhealth.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/textinputdialog.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/views/playlist/allplaylists.h"
#include "common/views/playlist/listclock.h"
#include "common/views/playlist/ownaddition.h"
#include "common/views/playlist/playlistcontainer.h"
#include "common/views/playlist/playlistdrop.h"
#include "common/views/playlist/playlisteditorheader.h"
#include "common/views/playlist/playlistlogging.h"
#include "common/views/playlist/playlistmenu.h"
#include "common/views/playlist/playlistview.h"
#include "tarn/media/medialibrary.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMimeData>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int usefulRows = 4;
constexpr int longestRanges = 4'000'000; // characters, of as many addresses as a list may hold
constexpr int hoverMs = 200;             // between two steps of a list that a drag scrolls

} // namespace

PlaylistEditor::PlaylistEditor(PlaybackViewMode mode, Session* session, QWidget* parent)
    : ZTFrame(parent)
    , m_mode(mode)
    , m_session(session)
    , m_model(isPreview() ? session->previewPlaylistEditorModel() : session->programPlaylistEditorModel())
    , m_selection(new PlaylistSelectionModel(m_model, this))
    , m_clock(ListClock::ofProgram(session))
    , m_added(new OwnAddition(session->getQUndoStack(), this))
{
    setObjectName(isPreview() ? QStringLiteral("Preview-PlaylistEditor")
                              : QStringLiteral("PlaylistEditor-program"));
    setAcceptDrops(true);
    build();
    connectSession();
    if (isPreview()) {
        session->setPlaylistSelection(m_selection);
        connectMenu();
    }
    updateEditable();
}

PlaylistEditor::~PlaylistEditor()
{
    // Those that are open go after the header does.
    for (const ZTDialog* dialog : findChildren<ZTDialog*>(Qt::FindDirectChildrenOnly))
        dialog->disconnect(this);
    if (m_session->playlistSelection() == m_selection)
        m_session->setPlaylistSelection(nullptr);
}

void PlaylistEditor::build()
{
    const PlaylistEditorHeader::Sources sources{m_model, m_session->playlistLibraryModel(),
                                                isPreview() ? m_session->previewPlaybackModel()
                                                            : m_session->programPlaybackModel(),
                                                m_session->getQUndoStack()};
    m_header = new PlaylistEditorHeader(m_mode, sources, this);
    m_container = new PlaylistContainer({m_mode}, isPreview(), this);
    m_container->setObjectNames(isPreview() ? QStringLiteral("Preview-PlaylistContainer")
                                            : QStringLiteral("Program-PlaylistContainer"));
    m_container->setModel(m_model);
    m_container->setSelectionModel(m_selection);
    m_container->setClock(m_clock);
    PlaylistView* view = m_container->list();
    view->setAccessibleName(isPreview() ? tr("Entries of the playlist")
                                        : tr("Entries of the playlist on program"));
    showPlaceholder();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::tight);
    layout->addWidget(m_header);
    layout->addWidget(m_container, 1);
    if (!isPreview()) {
        m_header->setClock(m_clock);
        m_container->followClock();
    }

    connect(m_header, &PlaylistEditorHeader::editorPinned, this, &PlaylistEditor::editorPinned);
    connect(m_header, &PlaylistEditorHeader::contextMenu, this, [this] {
        if (m_menu)
            m_menu->popup(m_header->menuPosition());
    });
    connect(m_header, &PlaylistEditorHeader::lostListChanged, this, &PlaylistEditor::showPlaceholder);
    connect(m_container, &PlaylistContainer::entryDoubleClick, this, &PlaylistEditor::handleEntryDoubleClick);
    connect(m_container, &PlaylistContainer::entryDragStarted, this, &PlaylistEditor::handleDragAndDrop);
    connect(view, &PlaylistView::actionRequested, this, &PlaylistEditor::runAction);
    connect(this, &PlaylistEditor::scrollPositionChanged, view, &PlaylistView::handleScrollPositionChanged);
    connect(m_model, &PlaylistModel::entriesAdded, this, &PlaylistEditor::selectAdded);
    // Who looks elsewhere by then wants to stay there.
    connect(m_model, &PlaylistModel::playlistChanged, m_added, &OwnAddition::forget);
    connect(m_selection, &QItemSelectionModel::selectionChanged, m_added, &OwnAddition::forget);
    connect(m_model, &QAbstractItemModel::modelReset, this, &PlaylistEditor::showAim);
    connect(m_model, &QAbstractItemModel::layoutChanged, this, &PlaylistEditor::showAim);
    connect(m_model, &QAbstractItemModel::rowsInserted, this, &PlaylistEditor::showAim);
    connect(m_model, &QAbstractItemModel::rowsRemoved, this, &PlaylistEditor::showAim);
    m_hover.setInterval(hoverMs);
    connect(&m_hover, &QTimer::timeout, this, &PlaylistEditor::dragHover);
}

void PlaylistEditor::showPlaceholder()
{
    const MediaLibraryApi* api = m_session->getMediaLibraryApi();
    QString text = api ? api->unread().whole : QString();
    if (text.isEmpty() && m_header->lostList() != 0)
        text = tr("Playlist %1 was removed. Choose another one above.").arg(m_header->lostList());
    else if (text.isEmpty())
        text = isPreview() ? tr("Insert items from Collections tab to build playlist.")
                           : tr("Take from Preview or drag a playlist here.");
    m_container->list()->setPlaceholderText(text);
}

int PlaylistEditor::usefulHeight() const
{
    const PlaylistView* view = m_container->list();
    return m_header->sizeHint().height() + spacing::tight + view->horizontalHeader()->sizeHint().height() +
           usefulRows * view->verticalHeader()->defaultSectionSize();
}

int PlaylistEditor::leastHeight() const
{
    return m_header->minimumSizeHint().height();
}

QSize PlaylistEditor::minimumSizeHint() const
{
    return {0, 0}; // it leaves out what does not fit
}

void PlaylistEditor::resizeEvent(QResizeEvent* event)
{
    ZTFrame::resizeEvent(event);
    const int row = m_container->list()->verticalHeader()->defaultSectionSize();
    m_header->setOneLine(height() < usefulHeight());
    const int left = height() - m_header->sizeHint().height() - spacing::tight;
    // A row and its titles, or nothing: a list that is cut is none.
    m_container->setVisible(left >= m_container->list()->horizontalHeader()->sizeHint().height() + row);
}

void PlaylistEditor::connectMenu()
{
    m_menu = new PlaylistMenu(this);
    m_menu->setModels(m_model, m_selection);
    // By the keyboard too, and then at the list.
    const PlaylistView* view = m_container->list();
    connect(view, &QWidget::customContextMenuRequested, this,
            [this, view](const QPoint& at) { m_menu->popup(view->viewport()->mapToGlobal(at)); });
    using Menu = PlaylistMenu;
    connect(m_menu, &Menu::doPreview, this, &PlaylistEditor::doPreview);
    connect(m_menu, &Menu::doRenumber, this, &PlaylistEditor::doRenumber);
    connect(m_menu, &Menu::doMoveUp, this, &PlaylistEditor::doMoveUp);
    connect(m_menu, &Menu::doMoveDown, this, &PlaylistEditor::doMoveDown);
    connect(m_menu, &Menu::doRemove, this, &PlaylistEditor::doRemove);
    connect(m_menu, &Menu::doRenamePlaylist, this, &PlaylistEditor::doRenamePlaylist);
    connect(m_menu, &Menu::doClearList, this, &PlaylistEditor::doClearList);
    connect(m_menu, &Menu::doCut, this, &PlaylistEditor::doCut);
    connect(m_menu, &Menu::doCopy, this, &PlaylistEditor::doCopy);
    connect(m_menu, &Menu::doPaste, this, &PlaylistEditor::doPaste);
    connect(m_menu, &Menu::doAction, this, &PlaylistEditor::runAction);
    connect(m_menu, &Menu::doDuplicatePlaylist, this, &PlaylistEditor::duplicatePlaylist);
    connect(m_menu, &Menu::doRemovePlaylist, this, [this] { removePlaylist(m_model->playlistNumber()); });
    m_files = new PlaylistFiles(m_model, m_session->getQUndoStack(), this);
    m_lists = new AllPlaylists(
        {m_model, m_session->playlistLibraryModel(), m_clock, m_session->getQUndoStack()}, this);
    connect(m_lists, &AllPlaylists::removalWanted, this, &PlaylistEditor::removePlaylist);
    connect(m_lists, &AllPlaylists::copyWanted, this,
            [this](uint playlist) { copyList(playlist, m_header->freeNumber()); });
    connect(m_menu, &Menu::doImport, this, [this] {
        if (ensurePlaylist())
            m_files->importTable(shownList());
    });
    connect(m_menu, &Menu::doExport, this, [this] { m_files->exportTable(shownList()); });
    connect(m_menu, &Menu::doPrint, this, [this] { m_files->printSheet(shownList()); });
    connect(m_menu, &Menu::aboutToRefresh, this, [this] {
        m_menu->setOffers(PlaylistPayload::isOffered(QGuiApplication::clipboard()->mimeData()),
                          !selectedMedia().isEmpty());
    });
}

void PlaylistEditor::connectSession()
{
    connect(m_session, &Session::connected, this, &PlaylistEditor::updateEditable);
    connect(m_session, &Session::disconnected, this, &PlaylistEditor::updateEditable);
    connect(m_session, &Session::libraryReadingChanged, this, &PlaylistEditor::updateEditable);
    connect(m_session->linkHealth(), &LinkHealth::changed, this, &PlaylistEditor::updateEditable);
    const AbstractPlaylistProvider* lists = m_session->playlistProvider();
    connect(lists, &AbstractPlaylistProvider::playlistRemoved, this, &PlaylistEditor::closeQuestionsOf);
    // A library that was read anew, after a loss of the link, may be another one.
    connect(lists, &AbstractPlaylistProvider::reset, this, [this, lists] {
        for (const ZTDialog* dialog : findChildren<ZTDialog*>(Qt::FindDirectChildrenOnly)) {
            const uint playlist = dialog->property("playlist").toUInt();
            if (playlist > 0 && !lists->playlist(playlist))
                closeQuestionsOf(playlist);
        }
    });
}

/// What cannot reach the server is not offered.
void PlaylistEditor::updateEditable()
{
    using State = LinkHealth::State;
    const MediaLibraryApi* api = m_session->getMediaLibraryApi();
    const State health = m_session->linkHealth()->state();
    m_clock->setStale(health == State::Silent || health == State::Lost);
    m_isEditable = m_session->libraryObstacle().isEmpty();
    m_header->setEditable(m_isEditable);
    m_header->setLibraryApi(api);
    m_header->setUnread(api ? api->unread().brief : QString());
    showPlaceholder();
    if (!isPreview())
        return;
    m_container->list()->setEditable(m_isEditable);
    m_menu->setEditable(m_isEditable);
    m_lists->setEditable(m_isEditable);
}

void PlaylistEditor::runAction(const QString& name)
{
    const auto is = [&name](const char* action) { return name == QLatin1String(action); };
    if (is("copy"))
        return doCopy();
    if (is("cue")) {
        if (isPreview())
            doPreview();
        return;
    }
    if (is("list_order"))
        return m_container->sortByNumber();
    if (is("all_playlists") && isPreview())
        return m_lists->show();
    if (!isPreview() || !m_isEditable)
        return;
    const bool hasRows = !m_selection->sortedSelectedRows().isEmpty();
    if (is("rename"))
        doRenamePlaylist();
    else if (is("paste"))
        doPaste();
    else if (is("insert_media"))
        insertMedia(selectedMedia());
    else if (!hasRows)
        return;
    else if (is("insert_media_before"))
        placeMedia([this](const QList<QString>& urls) { m_model->doInsertBefore(urls); });
    else if (is("replace_by_media"))
        placeMedia([this](const QList<QString>& urls) { m_model->doReplace(urls); });
    else if (is("edit_transition"))
        m_container->list()->editSelected(PlaylistModel::TransitionColumn);
    else if (is("edit_transition_time"))
        m_container->list()->editSelected(PlaylistModel::TransitionDurationColumn);
    else if (is("edit_end_action"))
        m_container->list()->editSelected(PlaylistModel::EndActionColumn);
    else if (is("delete"))
        doRemove();
    else if (is("cut"))
        doCut();
    else if (is("renumber_entries"))
        doRenumber();
    else if (is("move_entries_up"))
        doMoveUp();
    else if (is("move_entries_down"))
        doMoveDown();
}

void PlaylistEditor::openContextMenu()
{
    if (m_menu)
        m_menu->popup(QCursor::pos());
}

void PlaylistEditor::doColumns()
{
    qCDebug(lcPlaylist) << "doColumns";
}

void PlaylistEditor::changePlaylistNumber(int number)
{
    if (number > 0)
        m_model->setPlaylistNumber(static_cast<uint>(number));
}

void PlaylistEditor::doPreview()
{
    const QList<QModelIndex> rows = m_selection->sortedSelectedRows();
    const QModelIndex chosen = rows.isEmpty() ? m_selection->currentIndex() : rows.first();
    if (!chosen.isValid()) {
        qCWarning(lcPlaylist) << "Selected entry not valid.";
        refuse(tr("No entry is selected. Select the one to cue."));
        return;
    }
    m_model->doDirectPlayPreview(chosen, 0);
}

void PlaylistEditor::handleEntryDoubleClick(const QModelIndex& index)
{
    if (!index.isValid()) {
        qCWarning(lcPlaylist) << "Double clicked invalid model index, cannot proceed";
        return;
    }
    // The end action's cell has an editor of its own.
    if (!isPreview() || index.column() == PlaylistModel::EndActionColumn)
        return;
    m_model->doDirectPlayPreview(index, 0);
    Q_EMIT entryCued();
}

void PlaylistEditor::doMoveUp()
{
    const QList<QModelIndex> rows = m_selection->sortedSelectedRows();
    if (!rows.isEmpty() && rows.first().row() > 0)
        m_model->doMoveUp(rows); // it keeps them selected where they go
}

void PlaylistEditor::doMoveDown()
{
    const QList<QModelIndex> rows = m_selection->sortedSelectedRows();
    if (!rows.isEmpty() && rows.last().row() + 1 < m_model->rowCount())
        m_model->doMoveDown(rows);
}

void PlaylistEditor::selectAdded(uint playlist, const QList<EntryAddress>& addresses)
{
    m_container->list()->updateSelection(playlist, m_added->take(playlist, addresses));
}

void PlaylistEditor::confirm(QPointer<ConfirmationDialog>& dialog, const char* name, const QString& title,
                             const QString& text, const QString& accept, const std::function<void()>& action)
{
    if (dialog)
        dialog->close();
    dialog = new ConfirmationDialog(title, text, accept, this);
    dialog->setObjectNames(QLatin1String(name));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptClass(QStringLiteral("red"));
    connect(dialog, &ZTDialog::confirmed, this, action);
    ask(dialog);
}

void PlaylistEditor::ask(ZTDialog* dialog)
{
    dialog->setProperty("playlist", m_model->playlistNumber());
    ++m_openQuestions;
    holdList();
    connect(dialog, &QObject::destroyed, this, [this] {
        --m_openQuestions;
        holdList();
    });
    dialog->open();
}

void PlaylistEditor::holdList()
{
    if (isPreview())
        m_header->setHeld(m_openQuestions > 0 || m_isDragging);
}

/// The next list of that number is another one.
void PlaylistEditor::closeQuestionsOf(uint playlist)
{
    for (ZTDialog* dialog : findChildren<ZTDialog*>(Qt::FindDirectChildrenOnly)) {
        if (dialog->isVisible() && dialog->property("playlist").toUInt() == playlist) {
            dialog->close();
            refuse(tr("Playlist %1 was removed meanwhile.").arg(playlist));
        }
    }
}

void PlaylistEditor::doRemove()
{
    const QList<QModelIndex> rows = m_selection->sortedSelectedRows();
    if (rows.isEmpty())
        return;
    const bool isOne = rows.size() == 1;
    // Those that were seen selected when it was asked, wherever they stand by then.
    QList<QPersistentModelIndex> kept(rows.begin(), rows.end());
    const auto isOnAir = [this](const QModelIndex& row) {
        return m_clock->isPlaying(m_model->getEntryAddress(row));
    };
    confirm(
        m_removeDialog, "PlaylistEditor-remove-confirmation",
        isOne ? tr("Remove playlist entry") : tr("Remove playlist entries"),
        (isOne ? tr("Are you sure you want to remove selected entry?")
               : tr("Are you sure you want to remove selected entries?")) +
            (std::ranges::any_of(rows, isOnAir) ? onAirWarning(m_model->playlistNumber()) : QString()),
        tr("REMOVE"), [this, kept] {
            QList<QModelIndex> still;
            for (const QPersistentModelIndex& index : kept) {
                if (index.isValid())
                    still.append(index);
            }
            if (!still.isEmpty())
                m_model->doRemove(still);
            else
                refuse(tr("The entries were removed meanwhile, or the playlist was read anew. Look at it and "
                          "select them again."));
        });
}

void PlaylistEditor::doClearList()
{
    const uint playlist = m_model->playlistNumber();
    confirm(m_clearDialog, "PlaylistEditor-clear-confirmation", tr("Clear playlist"),
            tr("Are you sure you clear playlist?") + onAirWarning(playlist), tr("CLEAR"),
            [this, playlist, name = nameComing(playlist)] {
                if (m_model->playlistNumber() == playlist && nameComing(playlist) == name)
                    m_model->doClear();
                else
                    refuse(tr("Another playlist is shown now. Nothing was cleared."));
            });
}

void PlaylistEditor::doRenamePlaylist()
{
    m_header->beginNameEditing();
}

void PlaylistEditor::doRenumber()
{
    const QList<QModelIndex> rows = m_selection->sortedSelectedRows();
    if (rows.isEmpty())
        return;
    QList<EntryAddress> addresses = m_model->getEntryAddresses(rows);
    std::ranges::sort(addresses); // they are renumbered in this order, however the rows stand
    if (m_renumberDialog)
        m_renumberDialog->close();
    m_renumberDialog = new TextInputDialog(this);
    m_renumberDialog->setTitle(tr("Renumber"));
    m_renumberDialog->setAcceptText(tr("RENUMBER"));
    ZTEdit* from = m_renumberDialog->addField(tr("FROM:"));
    from->setMaxLength(longestRanges); // a text that is cut names other entries
    from->setText(EntryAddressUtils::entriesToRanges(addresses));
    m_renumberDialog->setHelp(
        0, tr("Insert single slot numbers or ranges separated by commas (e.g. 3,6,8-14)."));
    m_renumberDialog->addField(tr("TO (START):"), QString::fromStdString(addresses.first().toString(false)));
    m_renumberDialog->setHelp(1, tr("Insert new number for first slot to be renumbered."));
    m_renumberDialog->setObjectNames(QStringLiteral("Playlist-Renumber-Dialog"));
    m_renumberDialog->setAttribute(Qt::WA_DeleteOnClose);
    m_renumberDialog->setClosesOnAccept(false);
    connect(m_renumberDialog, &TextInputDialog::valuesConfirmed, this,
            [this, playlist = m_model->playlistNumber()](const QStringList& values) {
                sendRenumberCommand(playlist, values);
            });
    ask(m_renumberDialog);
}

void PlaylistEditor::sendRenumberCommand(uint playlist, const QStringList& values)
{
    const QList<EntryAddress> entries = EntryAddressUtils::rangesToEntries(values.value(0));
    const EntryAddress target = EntryAddressUtils::typed(values.value(1));
    m_renumberDialog->setError(0, {});
    m_renumberDialog->setError(1, {});
    if (!target.isValid()) {
        m_renumberDialog->setError(1, tr("Invalid slot number given for first slot."));
        return;
    }
    if (EntryAddressUtils::isAmbiguous(values.value(0))) {
        m_renumberDialog->setError(
            0, tr("A range goes over whole numbers, or over decimals of one. Write 1.5,2-3 instead of 1.5-3, "
                  "and 3.5 instead of 3.05."));
        return;
    }
    if (m_model->playlistNumber() != playlist) {
        m_renumberDialog->setError(
            0, tr("Another playlist is shown now. Show playlist %1 and renumber it there.").arg(playlist));
        return;
    }
    switch (m_model->doRenumber(target, entries)) {
    case 0:
        m_renumberDialog->accept();
        return;
    case 3:
        m_renumberDialog->setError(0, tr("Given slot(s) not found."));
        break;
    case 4:
        m_renumberDialog->setError(1, tr("Not enough space for renumbering."));
        break;
    default:
        m_renumberDialog->setError(0, tr("An error occured while renumbering."));
        break;
    }
}

void PlaylistEditor::doCopy()
{
    if (QMimeData* data = m_model->copyEntries(m_selection->sortedSelectedRows()))
        QGuiApplication::clipboard()->setMimeData(data);
}

void PlaylistEditor::doCut()
{
    const QList<QModelIndex> rows = m_selection->sortedSelectedRows();
    if (rows.isEmpty() || !m_isEditable)
        return;
    doCopy();
    m_model->doRemove(rows); // not asked about: it is on the clipboard, and undo brings it back
}

void PlaylistEditor::doPaste()
{
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    if (!PlaylistEditorModel::canPaste(data)) {
        refuse(tr("There are no entries or slots on the clipboard. Copy entries of a playlist first."));
        return;
    }
    const QList<QModelIndex> rows = m_selection->sortedSelectedRows();
    if (!ensurePlaylist())
        return;
    m_added->watch([&] { m_model->doPaste(data, rows.isEmpty() ? QModelIndex() : rows.last()); });
}

QList<QString> PlaylistEditor::selectedMedia() const
{
    return m_mediaSource ? m_mediaSource() : QList<QString>();
}

bool PlaylistEditor::hasMedia(const QList<QString>& urls) const
{
    if (urls.isEmpty())
        refuse(tr("Nothing is selected in the media panel. Select one or more slots there first."));
    return !urls.isEmpty();
}

void PlaylistEditor::placeMedia(const std::function<void(const QList<QString>& urls)>& place)
{
    const QList<QString> urls = selectedMedia();
    if (hasMedia(urls))
        m_added->watch([&] { place(urls); });
}

void PlaylistEditor::insertMedia(const QList<QString>& urls)
{
    if (!m_isEditable || !hasMedia(urls) || !ensurePlaylist())
        return;
    const QList<QModelIndex> rows = m_selection->sortedSelectedRows();
    m_added->watch([&] {
        if (rows.isEmpty())
            m_model->doInsertEnd(urls);
        else
            m_model->doDropCollection(urls, rows.last(), PlaylistEditorModel::AddMode::After);
    });
}

/// What is added before there is a list makes one.
bool PlaylistEditor::ensurePlaylist()
{
    if (m_model->playlistNumber() == PlaylistModel::noPlaylist)
        m_model->setPlaylistNumber(static_cast<uint>(m_header->freeNumber()));
    return m_model->playlistNumber() != PlaylistModel::noPlaylist;
}

void PlaylistEditor::refuse(const QString& why) const
{
    tellNotDone(tr("Edit playlist"), why);
}

} // namespace vantrel
