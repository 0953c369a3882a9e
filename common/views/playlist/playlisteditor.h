#pragma once

#include "common/ui/toolkit/ztframe.h"
#include "common/views/playlist/droptarget.h"
#include "common/views/playlist/playlistfiles.h"
#include "tarn/media/channelenums.h"
#include "tarn/media/entryaddress.h"

#include <QPersistentModelIndex>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>

class QMimeData;

namespace vantrel {

class AllPlaylists;
class ConfirmationDialog;
class ListClock;
class OwnAddition;
class PlaylistContainer;
class PlaylistDrop;
class PlaylistEditorHeader;
class PlaylistEditorModel;
class GuiPlaylistEntry;
class PlaylistMenu;
class PlaylistSelectionModel;
class Session;
class TextInputDialog;
class ZTDialog;
enum class ScrollDirection : int;

/// The playlist of a channel. On preview it is built and edited by drags, by keys and by its menu; on program
/// it is read-only, follows what plays and takes what is dropped on it on air. What is done goes through the
/// channel's editor model. Owned by PlaylistWidget; main thread.
class PlaylistEditor : public ZTFrame
{
    Q_OBJECT

public:
    /// session: must outlive this.
    PlaylistEditor(PlaybackViewMode mode, Session* session, QWidget* parent = nullptr);
    ~PlaylistEditor() override;

    PlaylistEditorModel* model() const { return m_model; }
    PlaylistEditorHeader* header() const { return m_header; }
    PlaylistContainer* container() const { return m_container; }
    PlaylistMenu* menu() const { return m_menu; }
    PlaylistSelectionModel* selection() const { return m_selection; }

    /// Where the URLs of the slots come from that are selected in the media panel.
    void setMediaSource(std::function<QList<QString>()> source) { m_mediaSource = std::move(source); }
    /// The height, in pixels, at which a few entries are seen.
    int usefulHeight() const;
    /// The pixels of what stands above the entries; in less nothing can be shown.
    int leastHeight() const;
    QSize minimumSizeHint() const override;
    /// Slots behind the current entry, or at the end; makes a list where there is none.
    void insertMedia(const QList<QString>& urls);

public Q_SLOTS:
    void doPreview();
    void doRenumber();
    void doMoveUp();
    void doMoveDown();
    void doRemove();
    void doRenamePlaylist();
    void doClearList();
    void doColumns();
    void doCopy();
    void doCut();
    void doPaste();
    void changePlaylistNumber(int number);
    void handleEntryDoubleClick(const QModelIndex& index);
    void handleDragAndDrop(const QModelIndex& index);
    void openContextMenu();

Q_SIGNALS:
    void editorPinned(bool pinned);
    void scrollPositionChanged(vantrel::ScrollDirection direction);
    /// An entry was double-clicked: it is on preview now.
    void entryCued();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    bool isPreview() const { return m_mode == Preview; }
    void build();
    void connectMenu();
    void connectSession();
    void runAction(const QString& name);
    void updateEditable();
    void dragHover();
    void endDrag();
    DropTarget targetOf(const QPoint& position) const;
    void aim(const QPoint& position);
    void showAim();
    bool hasShifted(const QPoint& position, const DropTarget& target) const;
    QString wordsOnAir(const PlaylistDrop& drop) const;
    QString wordsFor(const DropTarget& target, const PlaylistDrop& drop) const;
    QString nameAt(int row) const;
    void applyDrop(const PlaylistDrop& drop, const DropTarget& target);
    void dropPlaylist(uint number);
    void dropEntries(const PlaylistDrop& drop, const DropTarget& target);
    void dropMedia(const PlaylistDrop& drop, const DropTarget& target);
    QList<QString> selectedMedia() const;
    bool hasMedia(const QList<QString>& urls) const;
    void placeMedia(const std::function<void(const QList<QString>& urls)>& place);
    bool ensurePlaylist();
    bool hasAllSlots(const QList<QString>& urls) const;
    void refuse(const QString& why) const;
    void confirm(QPointer<ConfirmationDialog>& dialog, const char* name, const QString& title,
                 const QString& text, const QString& accept, const std::function<void()>& action);
    void sendRenumberCommand(uint playlist, const QStringList& values);
    void selectAdded(uint playlist, const QList<vantrel::EntryAddress>& addresses);
    /// While the dialog is open the list that is shown stays.
    void ask(ZTDialog* dialog);
    void closeQuestionsOf(uint playlist);
    void holdList();
    void showPlaceholder();
    PlaylistFiles::List shownList() const;
    bool canTake(const PlaylistDrop& drop) const;
    std::optional<QList<QModelIndex>> draggedRows(const PlaylistDrop& drop) const;
    QString onAirWarning(uint playlist) const;
    QString nameComing(uint playlist) const;
    QString listName() const;
    void duplicatePlaylist();
    void removePlaylist(uint playlist);
    bool copyList(uint playlist, int number);

    PlaybackViewMode m_mode;
    Session* m_session;
    PlaylistEditorModel* m_model;
    PlaylistEditorHeader* m_header = nullptr;
    PlaylistSelectionModel* m_selection;
    PlaylistContainer* m_container = nullptr;
    PlaylistMenu* m_menu = nullptr;
    PlaylistFiles* m_files = nullptr;
    AllPlaylists* m_lists = nullptr;
    ListClock* m_clock;
    QPointer<TextInputDialog> m_renumberDialog;
    QPointer<ConfirmationDialog> m_clearDialog;
    QPointer<ConfirmationDialog> m_removeDialog;
    QPointer<ConfirmationDialog> m_removeListDialog;
    std::function<QList<QString>()> m_mediaSource;
    QList<QPersistentModelIndex> m_dragSources;
    QPersistentModelIndex m_dropTarget; // the entry of what is shown
    DropTarget m_target;
    QPoint m_aimedAt;                        // where the drag is
    std::unique_ptr<PlaylistDrop> m_dragged; // read once, however long the drag goes on
    bool m_isDragging = false;
    bool m_isEditable = false;
    OwnAddition* m_added;    // is selected when it comes
    int m_openQuestions = 0; // dialogs that are about what is shown
    QTimer m_hover;
};

} // namespace vantrel
