// What a cell of the table of entries shows, and where it comes from.
#include "common/media/address/mediaaddresshash.h"
#include "common/media/address/mediautils.h"
#include "common/media/address/showntext.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/models/playlist/playlistmodel.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/media/net/mediastateprovider.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"

#include <QLocale>

#include <algorithm>
#include <limits>

namespace vantrel {

using media::MediaUtils;

QVariant PlaylistModel::data(const QModelIndex& index, int role) const
{
    const Item item = getEntry(index);
    if (!item)
        return {};
    const GuiPlaylistEntry& entry = *item;
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == ThumbnailColumn ? getThumbnail(entry) : displayData(entry, index.column());
    case Qt::DecorationRole:
        return index.column() == ThumbnailColumn ? getThumbnail(entry) : QVariant();
    case Qt::EditRole:
        return editData(entry, index.column());
    default:
        return rowData(entry, role);
    }
}

QVariant PlaylistModel::displayData(const GuiPlaylistEntry& entry, int column) const
{
    switch (column) {
    case NumberColumn:
        return QString::fromStdString(entry.address().toString(false));
    case EndActionColumn:
        return MediaUtils::endActionToHumanReadable(entry.endAction());
    case TransitionColumn:
        return MediaUtils::transitionTypeToHumanReadable(entry.transitionType());
    case RuntimeBeforeColumn:
    case RuntimeAfterColumn:
        return QStringLiteral("00:00:00"); // as wide as the times that the delegate draws
    case StateColumn:
        return static_cast<int>(getMediaState(entry));
    case MediaColumn:
        return recordOf(entry) ? QVariant(mediaName(entry)) : QVariant();
    case DurationColumn:
        return shownDuration(entry);
    case TransitionDurationColumn:
        return entry.transitionDuration();
    case SizeColumn:
        return sizeText(getMediaSize(entry));
    default:
        return {};
    }
}

QString PlaylistModel::sizeText(qint64 bytes)
{
    return bytes > 0
               ? QLocale().formattedDataSize(bytes, bytes < 1'000'000 ? 0 : 1, QLocale::DataSizeSIFormat)
               : QStringLiteral("0 B");
}

QString PlaylistModel::secondsText(double seconds)
{
    const QString text = QString::number(seconds, 'f', 3);
    const qsizetype zeros = text.endsWith(QLatin1String("00")) ? 2 : text.endsWith(u'0') ? 1 : 0;
    return text.chopped(zeros);
}

QVariant PlaylistModel::editData(const GuiPlaylistEntry& entry, int column) const
{
    switch (column) {
    case EndActionColumn:
        return static_cast<int>(entry.endAction());
    case TransitionColumn:
        return static_cast<int>(entry.transitionType());
    case RuntimeBeforeColumn:
        return entry.runtimeBefore();
    case RuntimeAfterColumn:
        return entry.runtimeAfter();
    case SizeColumn:
        return getMediaSize(entry);
    default:
        return displayData(entry, column);
    }
}

QVariant PlaylistModel::rowData(const GuiPlaylistEntry& entry, int role) const
{
    switch (role) {
    case PreviewPlayingEntryRole:
        return isPlaying(m_previewPlaying, entry);
    case ProgramPlayingEntryRole:
        return isPlaying(m_programPlaying, entry);
    case PlayableRole:
        return getMediaPlayable(entry);
    case PreviewRole:
        return QVariant::fromValue(getPreviewMediaState(entry));
    case ProgramRole:
        return QVariant::fromValue(getProgramMediaState(entry));
    case Qt::AccessibleDescriptionRole:
        return knownFaults(entry).join(u' ');
    default:
        return {};
    }
}

bool PlaylistModel::isPlaying(const Playing& playing, const GuiPlaylistEntry& entry) const
{
    return playing.playlist == m_playlist && playing.entry == entry.address();
}

MediaState PlaylistModel::getMediaState(const GuiPlaylistEntry& entry) const
{
    return m_stateProvider ? m_stateProvider->mediaState(static_cast<int>(m_playlist), entry.address())
                           : MediaState::UnknownState;
}

MediaState PlaylistModel::getPreviewMediaState(const GuiPlaylistEntry& entry) const
{
    return m_stateProvider ? m_stateProvider->previewMediaState(static_cast<int>(m_playlist), entry.address())
                           : MediaState::UnknownState;
}

MediaState PlaylistModel::getProgramMediaState(const GuiPlaylistEntry& entry) const
{
    return m_stateProvider ? m_stateProvider->programMediaState(static_cast<int>(m_playlist), entry.address())
                           : MediaState::UnknownState;
}

std::shared_ptr<const GuiMediaSlot> PlaylistModel::getEntrySlot(const GuiPlaylistEntry& entry) const
{
    return m_provider ? m_provider->entrySlot(m_playlist, entry.address()) : nullptr;
}

/// The record itself: an item costs as much as a hundred looks at it.
const MediaSlot* PlaylistModel::recordOf(const GuiPlaylistEntry& entry) const
{
    const MediaLibrary* library = m_provider ? m_provider->mediaLibrary() : nullptr;
    MediaAddress slot;
    return library && slot.parseString(entry.slotUrl().toStdString())
               ? library->findSlot(slot.collection, slot.slot)
               : nullptr;
}

bool PlaylistModel::getMediaPlayable(const GuiPlaylistEntry& entry) const
{
    const MediaSlot* slot = recordOf(entry);
    return slot && slot->getIsPlayable();
}

MediaMetadataPtr PlaylistModel::getMetadata(const GuiPlaylistEntry& entry) const
{
    const auto slot = getEntrySlot(entry);
    return slot && m_aggregator ? m_aggregator->metadata(slot->contentUrl()) : nullptr;
}

qint64 PlaylistModel::getMediaSize(const GuiPlaylistEntry& entry) const
{
    const MediaMetadataPtr metadata = getMetadata(entry);
    return metadata ? metadata->getFileSize().value_or(0) : knownSize(entry);
}

QVariant PlaylistModel::getThumbnail(const GuiPlaylistEntry& entry) const
{
    const auto slot = getEntrySlot(entry);
    const ThumbnailPtr picture = slot && m_aggregator ? m_aggregator->thumbnail(slot->contentUrl()) : nullptr;
    return picture ? QVariant(*picture) : QVariant();
}

double PlaylistModel::getMediaDuration(const GuiPlaylistEntry& entry) const
{
    const MediaSlot* slot = recordOf(entry);
    return slot ? slot->getEffectiveMediaDuration() : 0;
}

double PlaylistModel::getEffectiveMediaDuration(const GuiPlaylistEntry& entry) const
{
    const MediaSlot* slot = recordOf(entry);
    return slot ? slot->getTrimmedDuration() : 0;
}

bool PlaylistModel::hasInfiniteDuration(const GuiPlaylistEntry& entry) const
{
    const MediaSlot* slot = recordOf(entry);
    return slot && !slot->isFinite();
}

double PlaylistModel::shownDuration(const GuiPlaylistEntry& entry) const
{
    const MediaSlot* slot = recordOf(entry);
    if (!slot)
        return 0;
    return slot->isFinite() ? slot->getTrimmedDuration() : std::numeric_limits<double>::infinity();
}

QString PlaylistModel::mediaName(const GuiPlaylistEntry& entry) const
{
    const MediaSlot* slot = recordOf(entry);
    return slot ? shownText(QString::fromStdString(slot->getName())) : QString();
}

MediaState PlaylistModel::knownState(const GuiPlaylistEntry& entry) const
{
    if (const MediaState program = getProgramMediaState(entry); MediaStateProvider::isPlayingState(program))
        return program;
    if (const MediaState preview = getPreviewMediaState(entry); MediaStateProvider::isPlayingState(preview))
        return preview;
    const MediaSlot* slot = recordOf(entry);
    return slot && m_stateProvider ? m_stateProvider->mediaState(QUrl(QString::fromStdString(slot->getUrl())))
                                   : MediaState::UnknownState;
}

qint64 PlaylistModel::knownSize(const GuiPlaylistEntry& entry) const
{
    const MediaSlot* slot = recordOf(entry);
    return slot && m_aggregator ? m_aggregator->knownSize(QUrl(QString::fromStdString(slot->getUrl()))) : 0;
}

QStringList PlaylistModel::knownFaults(const GuiPlaylistEntry& entry) const
{
    const MediaSlot* slot = recordOf(entry);
    return slot && m_aggregator ? m_aggregator->knownFaults(QUrl(QString::fromStdString(slot->getUrl())))
                                : QStringList();
}

std::optional<MediaType> PlaylistModel::knownType(const GuiPlaylistEntry& entry) const
{
    const MediaSlot* slot = recordOf(entry);
    if (!slot)
        return {};
    const MediaMetadataPtr metadata =
        m_aggregator ? m_aggregator->knownMetadata(QUrl(QString::fromStdString(slot->getUrl()))) : nullptr;
    const bool isTold = metadata && metadata->getMediaType() != MediaType::Unknown;
    return isTold ? metadata->getMediaType() : slot->getMediaType();
}

QPixmap PlaylistModel::knownThumbnail(const GuiPlaylistEntry& entry) const
{
    const MediaSlot* slot = recordOf(entry);
    const ThumbnailPtr picture =
        slot && m_aggregator ? m_aggregator->knownThumbnail(QUrl(QString::fromStdString(slot->getUrl())))
                             : nullptr;
    return picture ? *picture : QPixmap();
}

void PlaylistModel::knowUrl(const GuiPlaylistEntry& entry) const
{
    MediaAddress address;
    if (!m_areUrlsKnown || !address.parseString(entry.slotUrl().toStdString()))
        return;
    const MediaSlot* slot = recordOf(entry);
    const std::string url = slot ? slot->getUrl() : std::string();
    if (slot && !m_urls.candidates(QUrl(QString::fromStdString(url))).contains(address))
        m_urls.insert(url, address);
}

void PlaylistModel::learnUrls() const
{
    m_urls.clear();
    m_areUrlsKnown = true;
    QSet<MediaAddress> known;
    MediaAddress address;
    for (const Item& item : m_rows.items()) {
        if (!address.parseString(item->slotUrl().toStdString()) || known.contains(address))
            continue;
        known.insert(address);
        if (const MediaSlot* slot = recordOf(*item))
            m_urls.insert(slot->getUrl(), address);
    }
}

QList<EntryAddress> PlaylistModel::getEntriesUsingMediaUrl(const QUrl& url) const
{
    QList<EntryAddress> addresses;
    const MediaLibrary* library = m_provider ? m_provider->mediaLibrary() : nullptr;
    if (!library || url.isEmpty())
        return addresses;
    if (!m_areUrlsKnown)
        learnUrls();
    for (const MediaAddress& address : m_urls.candidates(url)) {
        const MediaSlot* slot = library->findSlot(address.collection, address.slot);
        if (!slot || QUrl(QString::fromStdString(slot->getUrl())) != url)
            continue;
        for (const auto& entry : m_provider->slotEntries(address)) {
            if (entry->playlistNumber() == m_playlist && m_rows.rowOf(entry->address()) >= 0)
                addresses.append(entry->address());
        }
    }
    std::sort(addresses.begin(), addresses.end());
    return addresses;
}

} // namespace vantrel
