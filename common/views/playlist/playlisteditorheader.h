#pragma once

#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/channelenums.h"

#include <QModelIndex>
#include <QTimer>

#include <optional>

class QHBoxLayout;
class QUndoStack;

namespace vantrel {

class ContextMenuButton;
class ElidedLabel;
class IconButton;
class ListClock;
class PlaybackModel;
class PlaylistEditorModel;
class PlaylistLibraryModel;
class ZTDropdownMenu;
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
    /// Duration of the list in a row of the library; nothing known for an invalid index.
    void setDuration(const QModelIndex& index);
    /// Tells of the end of the list on program; the clock outlives this.
    void setClock(ListClock* clock);
    /// In little room the end of the list takes the place of its name, in one line.
    void setOneLine(bool oneLine);
    /// Whether there is a server that takes edits.
    void setEditable(bool editable);
    IconButton* pinButton() const { return m_pin; }
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

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool isPreview() const { return m_mode == Preview; }
    void buildPreview();
    void buildProgram();
    void buildDuration(QHBoxLayout* row);
    IconButton* addButton(QHBoxLayout* row, const QString& icon, const char* suffix, const QString& tip);
    void connectModels();
    void showList();
    void showClock();
    void fit();

    PlaybackViewMode m_mode;
    Sources m_sources;
    ListClock* m_clock = nullptr;
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
    std::optional<uint> m_awaited; // the list that was made here and has not come yet
    uint m_followed = 0;           // the list that the channel played last
    bool m_isNaming = false;
    bool m_isOneLine = false;
    bool m_isEditable = true;
};

} // namespace vantrel
