#pragma once

#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/channelenums.h"

#include <QModelIndex>
#include <QPoint>
#include <QPointer>
#include <QTimer>

#include <optional>

class QHBoxLayout;
class QUndoStack;

namespace vantrel {

class AbstractDiffApiCommand;
class ContextMenuButton;
class ElidedLabel;
class IconButton;
class ListClock;
class MediaLibraryApi;
class PlaybackModel;
class PlaylistEditorModel;
class PlaylistGrip;
class PlaylistLibraryModel;
class ZTDropdownMenu;
class ZTEdit;
class ZTLabel;

/// What stands above a playlist: on preview the choice among all playlists and what makes, names and pins
/// them; on program the name of what plays and when it is over. Both tell how long the list is. Owned by the
/// editor; main thread.
class PlaylistEditorHeader : public ZTFrame
{
    Q_OBJECT

public:
    /// What the header shows and acts on; all of it outlives the header.
    struct Sources
    {
        PlaylistEditorModel* model;
        PlaylistLibraryModel* library;
        PlaybackModel* playback; // of the channel
        QUndoStack* stack;
    };
    PlaylistEditorHeader(PlaybackViewMode mode, const Sources& sources, QWidget* parent = nullptr);

    /// The number of the list shown; PlaylistModel::noPlaylist for none.
    uint displayedPlaylist() const;
    /// Lists that are on their way to its server have their numbers too. Null for none.
    void setLibraryApi(const MediaLibraryApi* api);
    /// The least number that no list has.
    int freeNumber() const;
    /// A list of that number was made by the newest command: once it is there it is shown, to be named.
    void showWhenThere(uint number);
    /// Duration of the list in a row of the library; nothing known for an invalid index.
    void setDuration(const QModelIndex& index);
    /// Tells of the end of the list on program; the clock outlives this.
    void setClock(ListClock* clock);
    /// In little room the end of the list takes the place of its name, in one line.
    void setOneLine(bool oneLine);
    /// Whether there is a server that takes edits.
    void setEditable(bool editable);
    /// What stands for a list while the library is not read; empty once it is.
    void setUnread(const QString& unread);
    /// The list that was shown, was removed and has none in its place; 0 for none.
    uint lostList() const { return m_lost; }
    /// While the operator is in the midst of something the list stays; what was missed is caught up after it.
    void setHeld(bool held);
    IconButton* pinButton() const { return m_pin; }
    /// On the screen, under the button of the menu, which a key may have pressed.
    QPoint menuPosition() const;
    QSize minimumSizeHint() const override;

public Q_SLOTS:
    void beginNameEditing();
    void endNameEditing();
    void onPlaybackChange();
    void dropdownIndexChanged(int index);
    void createNewPlaylist(const QString& name, int number);
    void onNewPlaylistButtonClicked();
    void onPlaybackDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    void onDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    void onRowsInserted(const QModelIndex& parent, int first, int last);
    void onPlaylistChanged(uint playlist);

Q_SIGNALS:
    void editorPinned(bool pinned);
    void contextMenu();
    /// lostList() is another one.
    void lostListChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool isPreview() const { return m_mode == Preview; }
    /// Of the names of what is in it.
    QString prefix() const;
    void buildPreview();
    void buildProgram();
    void buildDuration(QHBoxLayout* row);
    IconButton* addButton(QHBoxLayout* row, const QString& icon, const char* suffix, const QString& tip);
    void connectModels();
    void showList();
    void showNoList();
    void showClock();
    void fit();
    void onRowsAboutToBeRemoved(int first, int last);
    void setLost(uint number);
    void showAwaited();
    void placeNameField();
    void closeNameField();
    void dropNaming();
    void tellRemoved(uint playlist) const;
    void rename(uint playlist, const QString& name);
    const AbstractDiffApiCommand* lastCommand() const;

    PlaybackViewMode m_mode;
    Sources m_sources;
    ListClock* m_clock = nullptr;
    PlaylistGrip* m_grip = nullptr;
    ZTDropdownMenu* m_dropdown = nullptr;
    IconButton* m_edit = nullptr;
    IconButton* m_new = nullptr;
    IconButton* m_pin = nullptr;
    IconButton* m_context = nullptr;
    ElidedLabel* m_name = nullptr;
    ElidedLabel* m_end = nullptr;
    ZTLabel* m_durationLabel = nullptr;
    ZTLabel* m_duration = nullptr;
    IconButton* m_infinite = nullptr;
    QTimer m_refresh;
    QPointer<const MediaLibraryApi> m_api;
    std::optional<uint> m_awaited; // the list that was made here and has not come yet
    bool m_isAwaitedDone = false;  // the server has made it
    uint m_followed = 0;           // the list that the channel played last
    uint m_lost = 0;
    QString m_unread;
    uint m_naming = 0;             // the list whose name is typed
    ZTEdit* m_nameField = nullptr; // over the drop-down, which shows what the library says
    bool m_isHeld = false;
    bool m_isReadAnew = false; // the library, since the list was shown last
    bool m_isOneLine = false;
    bool m_isEditable = true;
};

} // namespace vantrel
