#pragma once

#include "common/media/models/playlist/playlistlibraryitem.h"

#include <QAbstractTableModel>
#include <QPointer>

namespace vantrel {

class AbstractPlaylistProvider;
class GuiPlaylist;

/// All playlists by number, a row each. Follows the provider row by row; the session owns it. Main thread
/// only.
class PlaylistLibraryModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column : int {
        RowColumn = 0,      // its number, as int
        NameColumn = 1,     // "3: Walk-in"
        DurationColumn = 2, // seconds
        CountColumn = 3,
        // What views read by Qt::EditRole, and nobody sees as it stands.
        NumberColumn = 4, // of the playlist, as uint
        PlainNameColumn = 5,
        InfiniteColumn = 6, // whether the playlist never ends
        ColumnCount = 7,
    };

    explicit PlaylistLibraryModel(AbstractPlaylistProvider* provider, QObject* parent = nullptr);
    ~PlaylistLibraryModel() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Shows another name until the library tells its own; takes PlainNameColumn only.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// -1 when absent.
    int rowOf(uint playlist) const;
    /// ~0U for a row that there is not.
    uint playlistNumberAt(int row) const;
    /// The lowest number that no playlist has.
    int nextFreeNumber() const;

public Q_SLOTS:
    void reset();
    void handleProviderChange(uint playlist);
    void onPlaylistAdded(uint playlist);
    void onPlaylistChanged(uint playlist);
    void onPlaylistRemoved(uint playlist);

private:
    QVariant editData(const PlaylistLibraryItem& item, const QModelIndex& index) const;
    int lowerBound(uint playlist) const;
    static PlaylistLibraryItem itemOf(const GuiPlaylist& playlist);
    void addItem(const GuiPlaylist& playlist);

    QPointer<AbstractPlaylistProvider> m_provider;
    QList<PlaylistLibraryItem> m_items; // by ascending number
};

} // namespace vantrel
