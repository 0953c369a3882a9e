#include "common/media/models/playlist/playlistmodel.h"

#include "common/media/address/medialogging.h"
#include "common/media/address/mediautils.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/media/net/mediastateprovider.h"
#include "common/session/mirror/guiplayback.h"

#include <algorithm>

namespace vantrel {

using media::MediaUtils;

PlaylistModel::PlaylistModel(AbstractPlaylistProvider* provider, MediaDataAggregator* aggregator,
                             GUIPlayback* preview, GUIPlayback* program, const QSet<PlaybackViewMode>& modes,
                             MediaStateProvider* stateProvider, QObject* parent)
    : QAbstractTableModel(parent)
    , m_provider(provider)
    , m_aggregator(aggregator)
    , m_stateProvider(stateProvider)
    , m_preview(preview)
    , m_program(program)
{
    connectProvider();
    connectChannels(modes);
    if (aggregator) {
        connect(aggregator, &MediaDataAggregator::metadataChanged, this, &PlaylistModel::onMetadataChanged);
        connect(aggregator, &MediaDataAggregator::metadataInvalidated, this,
                &PlaylistModel::onMetadataChanged);
        connect(aggregator, &MediaDataAggregator::thumbnailChanged, this, &PlaylistModel::onThumbnailChanged);
        connect(aggregator, &MediaDataAggregator::thumbnailInvalidated, this,
                &PlaylistModel::onThumbnailChanged);
    }
    if (stateProvider)
        connect(stateProvider, &MediaStateProvider::mediaStateChanged, this,
                &PlaylistModel::onMediaStateChanged);
}

PlaylistModel::~PlaylistModel() = default;

void PlaylistModel::connectProvider()
{
    if (!m_provider)
        return;
    using Provider = AbstractPlaylistProvider;
    connect(m_provider, &Provider::reset, this, [this] { onLibraryRead(); });
    connect(m_provider, &Provider::playlistAdded, this, [this](uint playlist) {
        if (playlist == m_playlist)
            onReset();
    });
    connect(m_provider, &Provider::playlistRemoved, this, &PlaylistModel::onPlaylistRemoved);
    connect(m_provider, &Provider::entryAdded, this, &PlaylistModel::onEntryAdded);
    connect(m_provider, &Provider::entryChanged, this, &PlaylistModel::onEntryChanged);
    connect(m_provider, &Provider::entryRemoved, this, &PlaylistModel::onEntryRemoved);
    connect(m_provider, &Provider::entrySlotsModified, this, &PlaylistModel::onSlotsModified);
    connect(m_provider, &Provider::changesStarted, this, [this] { m_isChanging = true; });
    connect(m_provider, &Provider::changesFinished, this, &PlaylistModel::onChangesFinished);
}

void PlaylistModel::connectChannels(const QSet<PlaybackViewMode>& modes)
{
    const auto followed = [&](GUIPlayback* channel, PlaybackViewMode mode, void (PlaylistModel::*changed)()) {
        if (!channel || !modes.contains(mode))
            return;
        connect(channel, &GUIPlayback::mediaChanged, this, changed);
        connect(channel, &GUIPlayback::stateChanged, this, changed);
        connect(channel, &GUIPlayback::reset, this, changed);
        (this->*changed)();
    };
    followed(m_preview, PlaybackViewMode::Preview, &PlaylistModel::onPreviewChange);
    followed(m_program, PlaybackViewMode::Program, &PlaylistModel::onProgramChange);
}

int PlaylistModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

int PlaylistModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant PlaylistModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= ColumnCount)
        return {};
    static const char* const titles[ColumnCount] = {"#",
                                                    QT_TR_NOOP("End action"),
                                                    QT_TR_NOOP("Transition"),
                                                    QT_TR_NOOP("Runtime before"),
                                                    QT_TR_NOOP("Runtime after"),
                                                    "",
                                                    QT_TR_NOOP("Media"),
                                                    QT_TR_NOOP("Duration"),
                                                    QT_TR_NOOP("TransDur"),
                                                    "",
                                                    QT_TR_NOOP("Size")};
    return *titles[section] ? tr(titles[section]) : QString();
}

Qt::ItemFlags PlaylistModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    const auto entry = getEntry(index);
    if (!entry)
        return flags;
    // A cut takes no time.
    const bool takesTime = entry->transitionType() != TakeTransitionType::DirectCut;
    if (index.column() == EndActionColumn || index.column() == TransitionColumn ||
        (index.column() == TransitionDurationColumn && takesTime))
        flags |= Qt::ItemIsEditable;
    return flags;
}

void PlaylistModel::setPlaylistNumber(uint playlist)
{
    if (playlist == m_playlist)
        return;
    m_playlist = playlist;
    onReset();
    Q_EMIT playlistChanged(playlist);
}

AbstractPlaylistProvider* PlaylistModel::playlistProvider() const
{
    return m_provider;
}

std::shared_ptr<const GuiPlaylistEntry> PlaylistModel::getEntry(const QModelIndex& index) const
{
    const bool isHere = index.isValid() && index.model() == this && index.row() < m_rows.size();
    return isHere ? m_rows.at(index.row()) : nullptr;
}

EntryAddress PlaylistModel::getEntryAddress(const QModelIndex& index) const
{
    if (const auto entry = getEntry(index))
        return entry->address();
    qCWarning(lcMedia) << "Invalid index" << index << "in PlaylistModel::getEntryAddress";
    return {};
}

QList<EntryAddress> PlaylistModel::getEntryAddresses(const QList<QModelIndex>& indexes) const
{
    QList<EntryAddress> addresses;
    addresses.reserve(indexes.size());
    for (const QModelIndex& index : indexes) {
        if (const auto entry = getEntry(index))
            addresses.append(entry->address());
        else
            qCWarning(lcMedia) << "Invalid index in getEntryAddresses";
    }
    return addresses;
}

QModelIndex PlaylistModel::indexOf(EntryAddress address) const
{
    const int row = m_rows.rowOf(address);
    return row < 0 ? QModelIndex() : index(row, 0);
}

std::pair<int, int> PlaylistModel::addressDigits() const
{
    int major = 0, minor = 0;
    for (const Item& item : m_rows.items()) {
        major = std::max(major, item->address().major);
        minor = std::max(minor, item->address().minor);
    }
    const auto digits = [](int number) { return static_cast<int>(QString::number(number).size()); };
    return {digits(major), minor > 0 ? digits(minor) : 0};
}

QModelIndex PlaylistModel::getLeftmostIndex(int row) const
{
    return index(row, 0);
}

QModelIndex PlaylistModel::getRightmostIndex(int row) const
{
    return index(row, ColumnCount - 1);
}

void PlaylistModel::onReset()
{
    beginResetModel();
    populate();
    endResetModel();
}

void PlaylistModel::populate()
{
    clearCachedData();
    m_isBehind = m_isRearranged = false;
    m_edited.clear();
    if (m_provider && m_playlist != noPlaylist)
        m_rows.assign(m_provider->entries(m_playlist));
    sortData();
}

void PlaylistModel::clearCachedData()
{
    m_rows.clear();
    m_urls.clear();
    m_areUrlsKnown = false;
}

void PlaylistModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= ColumnCount || column == RuntimeBeforeColumn ||
        column == RuntimeAfterColumn || column == ThumbnailColumn)
        return;
    m_sortColumn = column;
    m_isAscending = order == Qt::AscendingOrder;
    m_isOrderDoubtful = false;
    relayout(rowOrder().sorted(m_rows.items()), {});
    if (m_rows.size() > 0)
        Q_EMIT dataChanged(index(0, 0), index(m_rows.size() - 1, ColumnCount - 1));
}

PlaylistOrder PlaylistModel::rowOrder() const
{
    return {*this, m_sortColumn, m_isAscending};
}

void PlaylistModel::sortData()
{
    m_isOrderDoubtful = false;
    m_rows.assign(rowOrder().sorted(m_rows.items()));
}

/// The same entries in another order; those that "moved" names have got another address. Selections and
/// editors stay with their entries.
void PlaylistModel::relayout(const QList<Item>& items, const QHash<EntryAddress, EntryAddress>& moved)
{
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    QList<EntryAddress> addresses;
    addresses.reserve(before.size());
    for (const QModelIndex& index : before) {
        const EntryAddress address = m_rows.at(index.row())->address();
        addresses.append(moved.value(address, address));
    }
    m_rows.assign(items);
    QModelIndexList after;
    after.reserve(before.size());
    for (qsizetype i = 0; i < before.size(); ++i)
        after.append(index(m_rows.rowOf(addresses[i]), before[i].column()));
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void PlaylistModel::onPlaylistRemoved(uint playlist)
{
    if (playlist == m_playlist)
        onReset();
}

void PlaylistModel::onEntryAdded(uint playlist, EntryAddress address)
{
    if (playlist != m_playlist || !m_provider || isBehind(address, false))
        return;
    const auto entry = m_provider->entry(playlist, address);
    if (!entry) {
        warnMissing(playlist, address);
        return;
    }
    if (m_rows.rowOf(address) >= 0) {
        onEntryChanged(playlist, address);
        return;
    }
    insertItems({entry});
    Q_EMIT entriesAdded(playlist, {address});
}

void PlaylistModel::onEntryChanged(uint playlist, EntryAddress address)
{
    if (playlist != m_playlist || !m_provider || isBehind(address, true))
        return;
    const int row = m_rows.rowOf(address);
    if (row < 0) {
        warnMissing(playlist, address);
        return;
    }
    const auto entry = m_provider->entry(playlist, address);
    if (!entry) {
        qCWarning(lcMedia) << "Model/provider data corrupt. Reseting.";
        onReset();
        return;
    }
    m_rows.replace(row, entry);
    knowUrl(*entry);
    doubtOrder();
    emitDataChangedOnRow(row);
}

void PlaylistModel::onEntryRemoved(uint playlist, EntryAddress address)
{
    if (playlist != m_playlist || isBehind(address, false))
        return;
    const int row = m_rows.rowOf(address);
    if (row < 0) {
        warnMissing(playlist, address);
        return;
    }
    removeItems({row});
    Q_EMIT entriesRemoved(playlist, {address});
}

void PlaylistModel::onSlotsModified(const QList<std::pair<uint, EntryAddress>>& entries)
{
    std::vector<int> rows;
    for (const auto& [playlist, address] : entries) {
        const int row = playlist == m_playlist ? m_rows.rowOf(address) : -1;
        if (row < 0)
            continue;
        rows.push_back(row);
        knowUrl(*m_rows.at(row));
    }
    doubtOrder();
    emitDataChangedOn(std::move(rows));
}

void PlaylistModel::onSlotModified(uint playlist, EntryAddress address)
{
    if (playlist != m_playlist || m_rows.rowOf(address) < 0)
        warnMissing(playlist, address);
    else
        onSlotsModified({{playlist, address}});
}

void PlaylistModel::onMetadataChanged(const QUrl& mediaUrl)
{
    emitDataChangedFor(mediaUrl, -1);
}

void PlaylistModel::onThumbnailChanged(const QUrl& mediaUrl)
{
    emitDataChangedFor(mediaUrl, ThumbnailColumn);
}

void PlaylistModel::onMediaStateChanged(const QUrl& mediaUrl, MediaState state)
{
    Q_UNUSED(state);
    emitDataChangedFor(mediaUrl, -1);
}

void PlaylistModel::onPreviewChange()
{
    follow(m_previewPlaying, m_preview);
}

void PlaylistModel::onProgramChange()
{
    follow(m_programPlaying, m_program);
}

void PlaylistModel::follow(Playing& playing, const GUIPlayback* channel)
{
    const media::PlaylistAndEntry now = channel && MediaUtils::isPlaylistAddress(channel->media())
                                            ? MediaUtils::parsePlaylistAddress(channel->media())
                                            : media::PlaylistAndEntry();
    const Playing before =
        std::exchange(playing, now.valid ? Playing{static_cast<uint>(now.playlist), now.entry} : Playing());
    doubtOrder();
    for (const Playing& changed : {before, playing}) {
        const int row = changed.playlist == m_playlist ? m_rows.rowOf(changed.entry) : -1;
        if (row >= 0)
            emitDataChangedOnRow(row);
    }
}

void PlaylistModel::emitDataChangedOnRow(int row, int firstColumn, int lastColumn)
{
    Q_EMIT dataChanged(index(row, firstColumn), index(row, lastColumn));
}

/// column: -1 for all of them.
void PlaylistModel::emitDataChangedFor(const QUrl& mediaUrl, int column)
{
    doubtOrder();
    std::vector<int> rows;
    for (const EntryAddress& address : getEntriesUsingMediaUrl(mediaUrl))
        rows.push_back(m_rows.rowOf(address));
    emitDataChangedOn(std::move(rows), std::max(column, 0), column < 0 ? ColumnCount - 1 : column);
}

void PlaylistModel::warnMissing(uint playlist, EntryAddress address) const
{
    qCWarning(lcMedia, "Missing entry %d/%s", static_cast<int>(playlist), address.toString(true).c_str());
}

} // namespace vantrel
