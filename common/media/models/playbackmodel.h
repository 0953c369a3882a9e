#pragma once

#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/guiplaylistentry.h"
#include "tarn/media/playenums.h"

#include <QAbstractTableModel>
#include <QPointer>

#include <utility>

class QUndoStack;

namespace vantrel {

class AbstractPlaylistProvider;
class GUIPlayback;

/// One channel in one row: the live playback object of the scene joined with what the library knows of its
/// media. The session owns one each for preview and program. Main thread only.
class PlaybackModel : public QAbstractTableModel
{
    Q_OBJECT
    Q_PROPERTY(int sourceMode READ sourceMode WRITE setSourceMode NOTIFY sourceModeChanged)

public:
    /// Whose end action the operator edits: nobody's, the playing entry's, or that of the slot on the
    /// channel.
    enum EndActionMode : int { DISABLED = 0, ENTRY = 1, SLOT = 2 };
    Q_ENUM(EndActionMode)

    enum Column : int {
        EndActionColumn = 0,
        EndActionModeColumn = 1,
        PlaylistNumberColumn = 2,
        EntryAddressColumn = 3,
        ReservedColumn = 4,
        MediaUrlColumn = 5,
        SourceModeColumn = 6,
        AudioDeviceColumn = 7,
        InpointColumn = 8,  // seconds, as all times here
        OutpointColumn = 9, // the duration where no out point is set
        DurationColumn = 10,
        MediaPositionColumn = 11,
        FpsColumn = 12,
        ColumnCount = 13,
    };

    PlaybackModel(QPointer<GUIPlayback> playback, AbstractPlaylistProvider* playlistProvider,
                  QObject* parent);
    ~PlaybackModel() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Takes the columns up to 9; those without a setter of their own change nothing.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    /// Whether a dataChanged() of these two tells of the column: the position comes with each picture.
    static bool isColumnIn(Column column, const QModelIndex& topLeft, const QModelIndex& bottomRight)
    {
        return topLeft.column() <= column && bottomRight.column() >= column;
    }
    /// Where the end action of an entry is edited.
    void setUndoStack(QUndoStack* stack);

    int sourceMode() const { return static_cast<int>(m_sourceMode); }
    /// From the scene; emits the cells, never sourceModeChanged, since the scene's property is read-only.
    void setSourceMode(int mode);

public Q_SLOTS:
    void onReset();
    void onProviderReset();
    void onPlaylistModified(uint playlist);
    void onEntryModified(uint playlist, vantrel::EntryAddress address);
    void onEntrySlotsModified(const QList<std::pair<uint, vantrel::EntryAddress>>& entries);
    void onSlotModified(vantrel::MediaAddress address);
    void refreshSlot();
    void onMediaChanged();
    void onEndActionChanged();
    void onSourceModeChanged();
    void onAudioDeviceChanged();
    void onInpointChanged();
    void onOutpointChanged();
    void onDurationChanged();
    void onMediaPositionChanged();
    void onFpsChanged();

Q_SIGNALS:
    void sourceModeChanged();

private:
    void setMedia(const QString& url);
    void setEndActionCommand(EndAction endAction);
    bool updateEndActionMode();
    void updatePlayingEntry(uint playlist, const EntryAddress& address);
    void updatePlayingSlot(const MediaAddress& address);
    void clearPlayingEntry();
    void emitCellChanged(int column);

    QPointer<GUIPlayback> m_playback;
    AbstractPlaylistProvider* m_playlistProvider;
    QPointer<QUndoStack> m_stack;
    QString m_mediaUrl;
    bool m_isEntryPlaying = false;
    GuiPlaylist m_playlist;
    GuiPlaylistEntry m_entry;
    GuiMediaSlot m_slot;
    EndAction m_endAction = EndAction::Next;
    SourceMode m_sourceMode = SourceMode::None;
    int m_audioDevice = 0;
    EndActionMode m_endActionMode = DISABLED;
};

} // namespace vantrel
