#include "common/media/models/playlist/playlistlibrarymodel.h"

#include "common/media/address/showntext.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guiplaylist.h"

#include <algorithm>

namespace vantrel {

PlaylistLibraryModel::PlaylistLibraryModel(AbstractPlaylistProvider* provider, QObject* parent)
    : QAbstractTableModel(parent)
    , m_provider(provider)
{
    if (!provider)
        return;
    using Provider = AbstractPlaylistProvider;
    connect(provider, &Provider::reset, this, &PlaylistLibraryModel::reset);
    connect(provider, &Provider::playlistAdded, this, &PlaylistLibraryModel::handleProviderChange);
    connect(provider, &Provider::playlistChanged, this, &PlaylistLibraryModel::handleProviderChange);
    connect(provider, &Provider::playlistRemoved, this, &PlaylistLibraryModel::onPlaylistRemoved);
    reset();
}

PlaylistLibraryModel::~PlaylistLibraryModel() = default;

int PlaylistLibraryModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_items.size());
}

int PlaylistLibraryModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant PlaylistLibraryModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_items.size())
        return {};
    const PlaylistLibraryItem& item = m_items[index.row()];
    if (role == Qt::EditRole)
        return editData(item, index);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case RowColumn:
        return index.row();
    case NameColumn:
        return QStringLiteral("%1: %2").arg(item.number).arg(shownText(item.name));
    case DurationColumn:
        return item.duration;
    case CountColumn:
        return static_cast<int>(item.entryCount);
    default:
        return {};
    }
}

QVariant PlaylistLibraryModel::editData(const PlaylistLibraryItem& item, const QModelIndex& index) const
{
    switch (index.column()) {
    case NumberColumn:
        return item.number;
    case NameColumn:
    case PlainNameColumn:
        return item.name;
    case InfiniteColumn:
        return item.isInfinite;
    default:
        return data(index, Qt::DisplayRole);
    }
}

bool PlaylistLibraryModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || index.row() >= m_items.size() || index.column() != PlainNameColumn ||
        (role != Qt::EditRole && role != Qt::DisplayRole))
        return false;
    m_items[index.row()].name = value.toString();
    Q_EMIT dataChanged(this->index(index.row(), 0), this->index(index.row(), ColumnCount - 1));
    return true;
}

QVariant PlaylistLibraryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case NameColumn:
        return tr("Name");
    case DurationColumn:
        return tr("Duration");
    case CountColumn:
        return QStringLiteral("#");
    default:
        return {};
    }
}

Qt::ItemFlags PlaylistLibraryModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (index.isValid() && (index.column() == NameColumn || index.column() == PlainNameColumn))
        flags |= Qt::ItemIsEditable;
    return flags;
}

int PlaylistLibraryModel::lowerBound(uint playlist) const
{
    const auto at = std::ranges::lower_bound(m_items, playlist, {}, &PlaylistLibraryItem::number);
    return static_cast<int>(at - m_items.begin());
}

int PlaylistLibraryModel::rowOf(uint playlist) const
{
    const int row = lowerBound(playlist);
    return row < m_items.size() && m_items[row].number == playlist ? row : -1;
}

uint PlaylistLibraryModel::playlistNumberAt(int row) const
{
    return row >= 0 && row < m_items.size() ? m_items[row].number : ~0U;
}

int PlaylistLibraryModel::nextFreeNumber() const
{
    uint number = 1;
    for (const PlaylistLibraryItem& item : m_items) {
        if (item.number == number)
            ++number;
    }
    return static_cast<int>(number);
}

void PlaylistLibraryModel::reset()
{
    beginResetModel();
    m_items.clear();
    if (m_provider) {
        for (const auto& playlist : m_provider->playlists())
            addItem(*playlist);
    }
    endResetModel();
}

PlaylistLibraryItem PlaylistLibraryModel::itemOf(const GuiPlaylist& playlist)
{
    PlaylistLibraryItem item;
    item.number = playlist.number();
    item.name = playlist.name();
    item.duration = playlist.duration();
    item.entryCount = playlist.entryCount();
    item.isInfinite = playlist.isInfinite();
    return item;
}

void PlaylistLibraryModel::addItem(const GuiPlaylist& playlist)
{
    m_items.insert(lowerBound(playlist.number()), itemOf(playlist));
}

void PlaylistLibraryModel::handleProviderChange(uint playlist)
{
    if (rowOf(playlist) < 0)
        onPlaylistAdded(playlist);
    else
        onPlaylistChanged(playlist);
}

void PlaylistLibraryModel::onPlaylistAdded(uint playlist)
{
    const auto added = m_provider ? m_provider->playlist(playlist) : nullptr;
    if (!added || rowOf(playlist) >= 0)
        return;
    const int row = lowerBound(playlist);
    beginInsertRows({}, row, row);
    addItem(*added);
    endInsertRows();
}

void PlaylistLibraryModel::onPlaylistChanged(uint playlist)
{
    const int row = rowOf(playlist);
    const auto changed = m_provider ? m_provider->playlist(playlist) : nullptr;
    if (row < 0 || !changed)
        return;
    m_items[row] = itemOf(*changed);
    Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

void PlaylistLibraryModel::onPlaylistRemoved(uint playlist)
{
    const int row = rowOf(playlist);
    if (row < 0)
        return;
    beginRemoveRows({}, row, row);
    m_items.removeAt(row);
    endRemoveRows();
}

} // namespace vantrel
