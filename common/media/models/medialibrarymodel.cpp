#include "common/media/models/medialibrarymodel.h"

#include "common/media/address/mediafiles.h"
#include "common/media/address/medialogging.h"
#include "common/media/edit/implmediacollectionmanager.h"
#include "common/media/edit/mediasloteditfunctional.h"
#include "common/media/items/abstractmedialibraryprovider.h"
#include "common/media/models/medialibraryitem.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/media/net/mediastateprovider.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/settings/timeutils.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"
#include "util/clocktime.h"

#include <algorithm>
#include <array>

namespace vantrel {

using media::MediaUtils;

namespace {

constexpr int onlyChannel = 0;

QString formatDuration(double seconds)
{
    return TimeUtils::formatClockTime(clocktime::fromSeconds(seconds));
}

QString stateText(const GUIPlayback& playback)
{
    return QString::fromUtf8(toStr(playback.state()));
}

} // namespace

MediaLibraryModel::MediaLibraryModel(MediaLibrary* library, GUIPlayback* preview, GUIPlayback* program,
                                     QObject* parent)
    : QAbstractItemModel(parent)
    , m_library(library)
    , m_preview(preview)
    , m_program(program)
{
    if (preview) {
        connect(preview, &GUIPlayback::mediaChanged, this, &MediaLibraryModel::onPreviewChange);
        connect(preview, &GUIPlayback::stateChanged, this, &MediaLibraryModel::onPreviewChange);
        connect(preview, &GUIPlayback::reset, this, &MediaLibraryModel::onPreviewChange);
    }
    if (program) {
        connect(program, &GUIPlayback::mediaChanged, this, &MediaLibraryModel::onProgramChange);
        connect(program, &GUIPlayback::stateChanged, this, &MediaLibraryModel::onProgramChange);
        connect(program, &GUIPlayback::reset, this, &MediaLibraryModel::onProgramChange);
    }
    connect(&m_turn, &Turn::come, this, [this] {
        if (!m_toTell.isEmpty())
            indexSome();
    });
    reset();
}

MediaLibraryModel::~MediaLibraryModel() = default;

void MediaLibraryModel::setMediaDataAggregator(MediaDataAggregator* aggregator)
{
    if (m_aggregator)
        m_aggregator->disconnect(this);
    m_aggregator = aggregator;
    if (!aggregator)
        return;
    connect(aggregator, &MediaDataAggregator::thumbnailChanged, this,
            [this](const QUrl& url) { onThumbnailUpdate(url); });
    connect(aggregator, &MediaDataAggregator::thumbnailInvalidated, this,
            &MediaLibraryModel::onThumbnailUpdate);
    connect(aggregator, &MediaDataAggregator::metadataChanged, this,
            [this](const QUrl& url) { onThumbnailUpdate(url); });
}

void MediaLibraryModel::setMediaStateProvider(MediaStateProvider* provider)
{
    if (m_stateProvider)
        m_stateProvider->disconnect(this);
    m_stateProvider = provider;
    if (provider)
        connect(provider, &MediaStateProvider::mediaStateChanged, this,
                &MediaLibraryModel::onMediaStateChanged);
}

void MediaLibraryModel::setMediaLibaryProvider(AbstractMediaLibraryProvider* provider)
{
    m_libraryProvider = provider;
}

QModelIndex MediaLibraryModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    // A slot's index holds its collection, which also tells the two levels apart.
    const MediaLibraryItem* collection =
        parent.isValid() ? m_collections[static_cast<std::size_t>(parent.row())].get() : nullptr;
    return createIndex(row, column, collection);
}

QModelIndex MediaLibraryModel::parent(const QModelIndex& child) const
{
    if (!child.isValid() || !child.internalPointer())
        return {};
    const auto* collection = static_cast<const MediaLibraryItem*>(child.internalPointer());
    return collectionIndex(collection->number());
}

int MediaLibraryModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return static_cast<int>(m_collections.size());
    const MediaLibraryItem* collection = parent.column() == 0 ? collectionItem(parent) : nullptr;
    return collection ? collection->childCount() : 0;
}

int MediaLibraryModel::columnCount(const QModelIndex& parent) const
{
    Q_UNUSED(parent);
    return ColumnCount;
}

const MediaLibraryItem* MediaLibraryModel::collectionItem(const QModelIndex& index) const
{
    const auto row = static_cast<std::size_t>(index.row());
    return index.isValid() && !index.internalPointer() && row < m_collections.size()
               ? m_collections[row].get()
               : nullptr;
}

const MediaLibraryItem* MediaLibraryModel::slotItem(const QModelIndex& index) const
{
    const auto* collection = static_cast<const MediaLibraryItem*>(index.internalPointer());
    if (!collection)
        return nullptr;
    const MediaAddress address(collection->number(), index.row());
    if (const MediaLibraryItem* made = m_slotItems.find(address))
        return made;
    const MediaSlot* record = collection->records().get(address.slot);
    return record ? m_slotItems.add(address, std::make_unique<MediaLibraryItem>(address.slot, *record))
                  : nullptr;
}

MediaAddress MediaLibraryModel::addressOf(const QModelIndex& index) const
{
    const auto* collection = static_cast<const MediaLibraryItem*>(index.internalPointer());
    return collection ? MediaAddress(collection->number(), index.row()) : MediaAddress();
}

QVariant MediaLibraryModel::data(const QModelIndex& index, int role) const
{
    // A view's own copy asks also where no row is current.
    if (!index.isValid() || !checkIndex(index))
        return {};
    if (const MediaLibraryItem* collection = collectionItem(index))
        return collectionData(*collection, index.column(), role);
    // A number without a slot still has its number, and one with a slot needs no look at it.
    if (role == NumberRole || (role == Qt::DisplayRole && index.column() == NumberColumn))
        return index.row();
    if (const MediaLibraryItem* slot = slotItem(index))
        return slotData(*slot, index, role);
    if (role == CollectionNumberRole)
        return addressOf(index).collection;
    return {};
}

QVariant MediaLibraryModel::collectionData(const MediaLibraryItem& item, int column, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        if (column == NumberColumn)
            return item.number();
        return column == NameColumn ? QVariant(item.name()) : QVariant();
    case NumberRole:
    case CollectionNumberRole:
        return item.number();
    case NameRole:
        return item.name();
    default:
        return {};
    }
}

QVariant MediaLibraryModel::displayData(const MediaLibraryItem& item, const QModelIndex& index) const
{
    switch (index.column()) {
    case ThumbnailColumn:
        return thumbnail(item);
    case StateColumn:
        return stateOf(index);
    case NameColumn:
        return item.name();
    case DurationColumn:
        return item.inpoint() > item.getOutpoint() ? item.effectiveDuration() : item.getOutpoint();
    case PlayableColumn:
        return item.isPlayable();
    case InpointColumn:
        return item.inpoint();
    case OutpointColumn:
        return item.getOutpoint();
    case ScalingColumn:
        return scaleModeToPrettyString(item.scaleMode());
    case UrlColumn:
        return item.url().toString();
    default:
        return {};
    }
}

QVariant MediaLibraryModel::slotData(const MediaLibraryItem& item, const QModelIndex& index, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        return displayData(item, index);
    case Qt::DecorationRole:
        return thumbnail(item);
    case PlayableRole:
        return item.isPlayable();
    case ThumbRole:
        return thumbnailImageUrl(item.url());
    case StateRole:
        return stateOf(index);
    case NameRole:
        return item.name();
    case DurationRole:
        return item.hasInfiniteDuration() ? tr("Infinite") : formatDuration(item.effectiveDuration());
    case InpointRole:
        return item.inpoint();
    case OutpointRole:
        return item.getOutpoint();
    case ScaleModeRole:
        return static_cast<int>(item.scaleMode());
    case CaveatsRole:
        return mediaCaveats(index);
    case MediaTypeRole:
        return mediaType(item);
    case DurationSecondsRole:
        return item.effectiveDuration();
    case HasInfiniteDurationRole:
        return item.hasInfiniteDuration();
    case UrlRole:
        return item.url();
    case CollectionNumberRole:
        return addressOf(index).collection;
    case Qt::EditRole:
        return index.column() == NameColumn ? QVariant(item.name()) : QVariant();
    case Qt::AccessibleTextRole:
        return accessibleText(item, index);
    case Qt::ToolTipRole:
        return toolTip(item);
    default:
        return knownData(item, index, role);
    }
}

/// "Slot 4, Clock, on preview, playing", and why it does not play when that is so.
QString MediaLibraryModel::accessibleText(const MediaLibraryItem& item, const QModelIndex& index) const
{
    QStringList parts{tr("Slot %1").arg(item.number()), item.name()};
    const auto state = static_cast<MediaState>(knownData(item, index, KnownStateRole).toInt());
    static constexpr std::array<const char*, 9> texts{QT_TR_NOOP("on program, playing"),
                                                      QT_TR_NOOP("on program, paused"),
                                                      QT_TR_NOOP("on program, stopped"),
                                                      QT_TR_NOOP("on preview, playing"),
                                                      QT_TR_NOOP("on preview, paused"),
                                                      QT_TR_NOOP("on preview, stopped"),
                                                      QT_TR_NOOP("playable"),
                                                      QT_TR_NOOP("playable, with limits"),
                                                      QT_TR_NOOP("cannot be played")};
    if (const auto number = static_cast<std::size_t>(state); number < texts.size())
        parts.append(tr(texts[number]));
    parts += knownFaults(item);
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

QString MediaLibraryModel::toolTip(const MediaLibraryItem& item) const
{
    // Escaped: a tooltip takes a name that looks like markup for markup.
    QString text = QStringLiteral("<p style='white-space:pre'>%1\n%2</p>")
                       .arg(item.name().toHtmlEscaped(), item.url().toDisplayString().toHtmlEscaped());
    for (const QString& fault : knownFaults(item))
        text += QStringLiteral("<p>%1</p>").arg(fault.toHtmlEscaped());
    return text;
}

QStringList MediaLibraryModel::knownFaults(const MediaLibraryItem& item) const
{
    return m_aggregator ? m_aggregator->knownFaults(item.url()) : QStringList();
}

QVariant MediaLibraryModel::knownData(const MediaLibraryItem& item, const QModelIndex& index, int role) const
{
    switch (role) {
    case KnownThumbnailRole: {
        const ThumbnailPtr pixmap = m_aggregator ? m_aggregator->knownThumbnail(item.url()) : nullptr;
        return pixmap ? QVariant(*pixmap) : QVariant();
    }
    case KnownStateRole: {
        const MediaState state = m_stateProvider
                                     ? m_stateProvider->knownMediaState(addressOf(index), item.url())
                                     : MediaState::UnknownState;
        return static_cast<int>(state);
    }
    case KnownFaultsRole:
        return knownFaults(item);
    case KnownTypeRole: {
        const MediaMetadataPtr metadata = m_aggregator ? m_aggregator->knownMetadata(item.url()) : nullptr;
        // Of a file that is missing the slot still knows what it was.
        const bool isTold = metadata && metadata->getMediaType() != MediaType::Unknown;
        return static_cast<int>(isTold ? metadata->getMediaType() : item.mediaType());
    }
    default:
        return {};
    }
}

QVariant MediaLibraryModel::thumbnail(const MediaLibraryItem& item) const
{
    if (item.url().isEmpty() || !m_aggregator)
        return {};
    const ThumbnailPtr pixmap = m_aggregator->thumbnail(item.url());
    return pixmap ? QVariant(*pixmap) : QVariant();
}

int MediaLibraryModel::stateOf(const QModelIndex& index) const
{
    if (!m_stateProvider)
        return static_cast<int>(MediaState::UnknownState);
    return static_cast<int>(m_stateProvider->mediaState(addressOf(index)));
}

int MediaLibraryModel::mediaType(const MediaLibraryItem& item) const
{
    if (item.url().isEmpty())
        return static_cast<int>(MediaType::Unknown);
    const MediaMetadataPtr metadata = m_aggregator ? m_aggregator->metadata(item.url()) : nullptr;
    return static_cast<int>(metadata ? metadata->getMediaType()
                                     : MediaUtils::getMediaType(item.url().toString()));
}

QStringList MediaLibraryModel::mediaCaveats(const QModelIndex& index) const
{
    const MediaLibraryItem* item = slotItem(index);
    return item && m_aggregator ? m_aggregator->mediaCaveatsDescribed(item->url()) : QStringList();
}

QVariant MediaLibraryModel::fetchThumbnail(const QModelIndex& index) const
{
    const MediaLibraryItem* item = slotItem(index);
    return item ? thumbnail(*item) : QVariant();
}

bool MediaLibraryModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != DurationSecondsRole && role != Qt::EditRole)
        return false;
    if (!index.isValid()) {
        qCWarning(lcMedia) << "Invalid index when saving duration value";
        return false;
    }
    if (!collectionItem(index.parent())) {
        qCWarning(lcMedia) << "Unable to read collection from parent index";
        return false;
    }
    if (!slotItem(index))
        return false;
    return role == Qt::EditRole && index.column() == NameColumn ? setName(index, value.toString())
                                                                : setDuration(index, value);
}

bool MediaLibraryModel::setDuration(const QModelIndex& index, const QVariant& value)
{
    bool isNumber = false;
    const double seconds = value.toDouble(&isNumber);
    return isNumber &&
           ImplMediaCollectionManager().updateMediaDuration(getCollectionIndexNumber(index), index.row(),
                                                            seconds, slotItem(index)->hasInfiniteDuration());
}

bool MediaLibraryModel::setName(const QModelIndex& index, const QString& name)
{
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || trimmed == slotItem(index)->name())
        return false;
    return MediaSlotEditFunctional::rename({getCollectionIndexNumber(index), index.row()}, trimmed);
}

QVariant MediaLibraryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case NumberColumn:
        return QStringLiteral("#");
    case ThumbnailColumn:
    case StateColumn:
    case 3:
        return QString();
    case NameColumn:
        return tr("Name");
    case DurationColumn:
        return tr("Duration");
    case InpointColumn:
        return tr("Inpoint");
    case OutpointColumn:
        return tr("Outpoint");
    case ScalingColumn:
        return tr("Scaling");
    default:
        return {};
    }
}

Qt::ItemFlags MediaLibraryModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    if (!index.isValid() || !index.internalPointer())
        return flags;
    if (slotItem(index) && index.column() == NameColumn)
        flags |= Qt::ItemIsEditable;
    return flags | Qt::ItemNeverHasChildren | Qt::ItemIsDragEnabled;
}

QHash<int, QByteArray> MediaLibraryModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractItemModel::roleNames();
    names.insert({
        {NumberRole, "number"},
        {ThumbRole, "thumb"},
        {StateRole, "mediaState"},
        {NameRole, "name"},
        {DurationRole, "duration"},
        {InpointRole, "inpoint"},
        {OutpointRole, "outpoint"},
        {ScaleModeRole, "scale mode"},
        {MediaTypeRole, "mediaType"},
        {DurationSecondsRole, "durationSeconds"},
        {HasInfiniteDurationRole, "hasInfiniteDuration"},
        {UrlRole, "url"},
    });
    return names;
}

int MediaLibraryModel::getCollectionIndexNumber(const QModelIndex& index)
{
    return media::MediaUtils::collectionNumber(index);
}

QModelIndex MediaLibraryModel::collectionIndex(int collection) const
{
    const int row = rowOf(collection);
    return row < 0 ? QModelIndex() : index(row, 0);
}

QModelIndex MediaLibraryModel::slotIndex(const MediaAddress& address) const
{
    const QModelIndex collection = collectionIndex(address.collection);
    return collection.isValid() ? index(address.slot, 0, collection) : QModelIndex();
}

QString MediaLibraryModel::normalizeMediaAddress(const QString& address)
{
    const bool known = address.startsWith(QStringLiteral("brume://collections/")) ||
                       address.startsWith(QStringLiteral("brume://playlists/"));
    return known ? address : QString();
}

QModelIndex MediaLibraryModel::getSlotIndexFromMediaAddress(QString mediaAddress) const
{
    const MediaAddress slot = MediaUtils::isPlaylistAddress(mediaAddress)
                                  ? resolvePlaylistAddress(mediaAddress)
                                  : MediaUtils::parseSlotAddress(mediaAddress);
    return slot.isValid() ? slotIndex(slot) : QModelIndex();
}

MediaAddress MediaLibraryModel::resolvePlaylistAddress(const QString& address) const
{
    const std::lock_guard lock(m_library->getMutex());
    return resolvePlaylistAddressUnsafe(address);
}

MediaAddress MediaLibraryModel::resolvePlaylistAddressUnsafe(const QString& address) const
{
    const media::PlaylistAndEntry target = MediaUtils::parsePlaylistAddress(address);
    if (!target.valid)
        return {};
    const MediaLibrary& library = *m_library;
    const Playlist* playlist = library.findPlaylist(target.playlist);
    if (!playlist) {
        qCWarning(lcMedia) << "No Playlist found with a number:" << target.playlist;
        return {};
    }
    const PlaylistEntry* entry = playlist->findEntry(target.entry);
    if (!entry) {
        qCWarning(lcMedia) << "No entry found with a address:" << target.entry.toString(true).c_str();
        return {};
    }
    const QString url = QString::fromStdString(entry->getMediaUrl());
    if (!MediaUtils::isSlotAddress(url)) {
        qCWarning(lcMedia) << "Unsupported media address in playlist entry:" << url;
        return {};
    }
    return MediaUtils::parseSlotAddress(url);
}

QVariant MediaLibraryModel::data(const QString& address, int role, int column) const
{
    const QModelIndex found = getSlotIndexFromMediaAddress(address);
    if (!found.isValid()) {
        qCDebug(lcMedia) << "Index not valid, returning invalid variant";
        return {};
    }
    return data(found.siblingAtColumn(column), role);
}

bool MediaLibraryModel::holdsMedia(const MediaAddress& address) const
{
    const int row = rowOf(address.collection);
    if (row < 0)
        return false;
    const MediaSlot* record = m_collections[static_cast<std::size_t>(row)]->records().get(address.slot);
    return record && !record->getUrl().empty();
}

void MediaLibraryModel::setProgramState(int channel, const QString& mediaAddress, const QString& state)
{
    if (channel == onlyChannel)
        setMark(m_programMark, mediaAddress, state);
}

void MediaLibraryModel::setPreviewState(int channel, const QString& mediaAddress, const QString& state)
{
    if (channel == onlyChannel)
        setMark(m_previewMark, mediaAddress, state);
}

void MediaLibraryModel::setMark(Mark& mark, const QString& mediaAddress, const QString& state)
{
    const QString address = normalizeMediaAddress(mediaAddress);
    if (mark.address == address && mark.state == state)
        return;
    const QString old = std::exchange(mark.address, address);
    mark.state = state;
    if (!old.isEmpty())
        emitDataChangedForRow(getSlotIndexFromMediaAddress(old));
    if (!address.isEmpty() && address != old)
        emitDataChangedForRow(getSlotIndexFromMediaAddress(address));
}

void MediaLibraryModel::onPreviewChange()
{
    if (m_preview)
        setPreviewState(onlyChannel, m_preview->media(), stateText(*m_preview));
}

void MediaLibraryModel::onProgramChange()
{
    if (m_program)
        setProgramState(onlyChannel, m_program->media(), stateText(*m_program));
}

void MediaLibraryModel::onThumbnailUpdate(const QUrl& mediaUrl)
{
    tellOf(mediaUrl);
}

void MediaLibraryModel::onMediaStateChanged(const QUrl& mediaUrl, MediaState state)
{
    Q_UNUSED(state); // each row asks for its own: one file may stand in many slots
    tellOf(mediaUrl);
}

void MediaLibraryModel::emitDataChangedForRow(const QModelIndex& index)
{
    if (index.isValid())
        Q_EMIT dataChanged(index.siblingAtColumn(0), index.siblingAtColumn(ColumnCount - 1));
}

} // namespace vantrel
