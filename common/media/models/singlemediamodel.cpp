#include "common/media/models/singlemediamodel.h"

#include "common/media/address/mediautils.h"
#include "common/media/address/showntext.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guimediacollection.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/net/mediadataaggregator.h"
#include "tarn/media/mediaenums.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace vantrel {

using media::MediaUtils;

namespace {

constexpr std::array titles{
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Name:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Location:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Duration:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Width:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Height:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Aspect:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "FPS:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Video:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Colorspace:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Pixel Format:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Avg. bitrate:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "File size:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Audio:"),
    "",
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Imported:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Modified:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Playlist:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Collection:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Used in:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Media type:"),
    QT_TRANSLATE_NOOP("vantrel::SingleMediaModel", "Scaling:"),
};

const QString unknown = QStringLiteral("--");     // nobody knows
const QString inapplicable = QStringLiteral("-"); // there is none

QString orUnknown(const QString& text)
{
    return text.isEmpty() ? unknown : text;
}

QString pixels(const std::optional<int>& count)
{
    return count ? QString::number(*count) + QStringLiteral(" px") : unknown;
}

QString rateText(double rate)
{
    return QString::number(std::round(rate * 1000) / 1000);
}

QString dateText(const std::optional<DateTime>& time)
{
    return orUnknown(time ? QString::fromStdString(time->toString()) : QString());
}

/// The shape of the picture as it is shown: "16:9", or "1.85:1" where no small numbers say it.
QString aspectText(qint64 width, qint64 height, const Rational<int>& pixel)
{
    constexpr qint64 largestTerm = 32;
    qint64 wide = width * pixel.num, high = height * pixel.den;
    if (wide <= 0 || high <= 0)
        return unknown;
    const qint64 common = std::gcd(wide, high);
    wide /= common;
    high /= common;
    QString text = wide <= largestTerm && high <= largestTerm
                       ? QStringLiteral("%1:%2").arg(wide).arg(high)
                       : QStringLiteral("%1:1").arg(double(wide) / double(high), 0, 'f', 2);
    if (pixel.num != pixel.den)
        text += u' ' + SingleMediaModel::tr("(pixels %1)").arg(QString::fromStdString(pixel.toString()));
    return text;
}

QString bitRateText(qint64 bitsPerSecond)
{
    if (bitsPerSecond < 1'000'000)
        return SingleMediaModel::tr("%1 kbit/s").arg(std::lround(bitsPerSecond / 1e3));
    return SingleMediaModel::tr("%1 Mbit/s").arg(QLocale().toString(bitsPerSecond / 1e6, 'f', 1));
}

} // namespace

SingleMediaModel::SingleMediaModel(MediaDataAggregator* aggregator,
                                   AbstractPlaylistProvider* playlistProvider,
                                   MediaLibraryProvider* mediaProvider, QObject* parent)
    : QAbstractTableModel(parent)
    , m_playlistProvider(playlistProvider)
    , m_mediaProvider(mediaProvider)
{
    connectSources();
    setMediaDataAggregator(aggregator);
}

void SingleMediaModel::setMediaDataAggregator(MediaDataAggregator* aggregator)
{
    if (m_aggregator)
        m_aggregator->disconnect(this);
    m_aggregator = aggregator;
    if (m_aggregator) {
        connect(m_aggregator, &MediaDataAggregator::metadataChanged, this,
                &SingleMediaModel::onMetadataChanged);
        connect(m_aggregator, &MediaDataAggregator::metadataInvalidated, this,
                &SingleMediaModel::onMetadataChanged);
    }
    SingleMediaModel::onReset();
}

void SingleMediaModel::connectSources()
{
    using Playlists = AbstractPlaylistProvider;
    using Library = AbstractMediaLibraryProvider;
    if (m_playlistProvider) {
        connect(m_playlistProvider, &Playlists::reset, this, &SingleMediaModel::onProviderReset);
        for (const auto signal :
             {&Playlists::playlistAdded, &Playlists::playlistChanged, &Playlists::playlistRemoved})
            connect(m_playlistProvider, signal, this, &SingleMediaModel::onPlaylistModified);
        for (const auto signal : {&Playlists::entryAdded, &Playlists::entryChanged, &Playlists::entryRemoved})
            connect(m_playlistProvider, signal, this, &SingleMediaModel::onEntryModified);
        connect(m_playlistProvider, &Playlists::entrySlotsModified, this,
                [this](const QList<std::pair<uint, EntryAddress>>& entries) {
                    const auto entry = entryInFocus();
                    if (entry.valid && entries.contains({static_cast<uint>(entry.playlist), entry.entry}))
                        onReset();
                });
    }
    if (const Library* library = m_mediaProvider) {
        connect(library, &Library::reset, this, &SingleMediaModel::onProviderReset);
        for (const auto signal : {&Library::slotAdded, &Library::slotChanged, &Library::slotRemoved})
            connect(library, signal, this, &SingleMediaModel::onSlotModified);
        // Collections come and go with their slots, and their name is shown too.
        connect(library, &Library::collectionAdded, this, &SingleMediaModel::onCollectionModified);
        connect(library, &Library::collectionRemoved, this, &SingleMediaModel::onCollectionModified);
        connect(library, &Library::collectionChanged, this,
                [this] { Q_EMIT dataChanged(index(0, CollectionColumn), index(0, UsedInColumn)); });
    }
}

int SingleMediaModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 1;
}

int SingleMediaModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant SingleMediaModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const bool hasTitle = section >= 0 && section < static_cast<int>(titles.size()) && *titles[section];
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || !hasTitle)
        return {};
    return tr(titles[section]);
}

QVariant SingleMediaModel::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole || !checkIndex(index, CheckIndexOption::IndexIsValid) ||
        m_contentUrl.isEmpty() || !m_metadata)
        return {};
    const auto slot = getMediaSlotPtr();
    switch (index.column()) {
    case NameColumn:
        return slot ? shownText(slot->name()) : QString();
    case LocationColumn:
        return shownText(m_contentUrl.isLocalFile() ? m_contentUrl.toLocalFile() : m_contentUrl.toString());
    case DurationColumn:
        if (slot && slot->hasInfiniteDuration())
            return tr("Infinite");
        return MediaUtils::formatSeconds(slot ? slot->duration() : 0.0);
    case PlaylistColumn:
        return playlistText();
    case CollectionColumn:
        return collectionText();
    case UsedInColumn:
        return getUsedInList();
    case ScalingColumn:
        return QString();
    default:
        return fileData(index.column());
    }
}

QVariant SingleMediaModel::fileData(int column) const
{
    const QLocale locale;
    switch (column) {
    case FpsColumn:
        return fpsText();
    case FileSizeColumn:
        if (const auto size = m_metadata->getFileSize(); size && *size > 0)
            return locale.formattedDataSize(*size, *size < 1'000'000 ? 0 : 1, QLocale::DataSizeSIFormat);
        return QStringLiteral("0 B");
    case AudioColumn:
        return audioText();
    case ChannelsColumn:
        return channelsText();
    case ImportedColumn:
        return dateText(m_metadata->getImported());
    case ModifiedColumn:
        return dateText(m_metadata->getModified());
    case MediaTypeColumn:
        switch (m_metadata->getMediaType()) {
        case MediaType::VideoFile:
            return tr("Video");
        case MediaType::AudioFile:
            return tr("Audio");
        case MediaType::ImageFile:
            return tr("Image");
        case MediaType::ImageSequence:
            return tr("Image sequence");
        default:
            return tr("Unknown");
        }
    case ReservedColumn:
        return {};
    default:
        return pictureText(column);
    }
}

QString SingleMediaModel::pictureText(int column) const
{
    const bool isVideo = m_metadata->getVideo().has_value();
    const auto& pictures = isVideo ? m_metadata->getVideo() : m_metadata->getImage();
    if (!pictures)
        return unknown;
    switch (column) {
    case WidthColumn:
        return pixels(pictures->width);
    case HeightColumn:
        return pixels(pictures->height);
    case AspectColumn:
        return aspectText(pictures->width.value_or(0), pictures->height.value_or(0),
                          pictures->pixelAspect.value_or(Rational<int>{1, 1}));
    case VideoColumn: {
        const QString codec = QString::fromStdString(pictures->codec);
        return orUnknown(
            isVideo ? (codec.toUpper() + u' ' + QString::fromStdString(pictures->profile)).trimmed() : codec);
    }
    case ColorSpaceColumn:
        return QString::fromUtf8(toStr(pictures->colorSpace));
    case PixelFormatColumn:
        return orUnknown(QString::fromStdString(pictures->pixelFormat));
    case BitRateColumn:
        return isVideo && pictures->bitRate ? bitRateText(*pictures->bitRate) : unknown;
    default:
        return unknown;
    }
}

QString SingleMediaModel::fpsText() const
{
    if (const auto slot = getMediaSlotPtr(); slot && slot->frameRate())
        return rateText(*slot->frameRate());
    const auto& video = m_metadata->getVideo();
    return video && video->frameRate ? rateText(*video->frameRate) : unknown;
}

QString SingleMediaModel::audioText() const
{
    const auto& audio = m_metadata->getAudio();
    return orUnknown(audio ? QString::fromStdString(audio->codec + " " + audio->description).trimmed()
                           : QString());
}

QString SingleMediaModel::channelsText() const
{
    const auto& audio = m_metadata->getAudio();
    if (!audio || audio->channels < 1)
        return unknown;
    return QString::number(audio->channels) + u' ' + (audio->channels == 1 ? tr("channel") : tr("channels"));
}

QString SingleMediaModel::playlistText() const
{
    if (!MediaUtils::isPlaylistAddress(m_mediaAddress))
        return inapplicable;
    const auto entry = entryInFocus();
    return entry.valid ? getPlaylistString(static_cast<uint>(entry.playlist), entry.entry) : QString();
}

QString SingleMediaModel::collectionText() const
{
    if (!MediaUtils::isSlotAddress(m_mediaAddress))
        return inapplicable;
    const auto slot = MediaUtils::parseSlotAddress(m_mediaAddress);
    return slot.isValid() ? getCollectionString(slot.collection, slot.slot) : QString();
}

media::PlaylistAndEntry SingleMediaModel::entryInFocus() const
{
    return MediaUtils::isPlaylistAddress(m_mediaAddress) ? MediaUtils::parsePlaylistAddress(m_mediaAddress)
                                                         : media::PlaylistAndEntry();
}

QString SingleMediaModel::getCollectionString(int collection, int slot) const
{
    const auto item = m_mediaProvider ? m_mediaProvider->collection(collection) : nullptr;
    if (!item)
        return {};
    return QString::number(collection) + QStringLiteral(": ") + shownText(item->name()) +
           QStringLiteral(", ") + tr("slot ") + QString::number(slot);
}

QString SingleMediaModel::getPlaylistString(uint playlist, EntryAddress address) const
{
    const auto item = m_playlistProvider ? m_playlistProvider->playlist(playlist) : nullptr;
    if (!item)
        return {};
    return QString::number(playlist) + QStringLiteral(": ") + shownText(item->name()) +
           QStringLiteral(" - ") + QString::fromStdString(address.toString(true));
}

QStringList SingleMediaModel::getUsedInList() const
{
    const QString branch = QStringLiteral("\u2514 ");
    QStringList lines;
    if (MediaUtils::isSlotAddress(m_mediaAddress)) {
        const auto slot = MediaUtils::parseSlotAddress(m_mediaAddress);
        if (!slot.isValid() || !m_playlistProvider)
            return lines;
        const auto users = m_playlistProvider->slotEntries(slot);
        QList<std::pair<uint, EntryAddress>> places;
        for (const auto& entry : users)
            places.append({entry->playlistNumber(), entry->address()});
        std::sort(places.begin(), places.end());
        for (const auto& [playlist, address] : places)
            lines.append(branch + getPlaylistString(playlist, address));
    } else if (const auto slot = getMediaSlotPtr()) {
        lines.append(branch + getCollectionString(slot->address().collection, slot->address().slot));
    }
    return lines;
}

QString SingleMediaModel::removePrefix(const QString& text, const QString& prefix)
{
    return text.startsWith(prefix) ? text.mid(prefix.size()) : text;
}

std::shared_ptr<const GuiMediaSlot> SingleMediaModel::getMediaSlotPtr() const
{
    if (MediaUtils::isSlotAddress(m_mediaAddress)) {
        const auto slot = MediaUtils::parseSlotAddress(m_mediaAddress);
        const bool isThere =
            slot.isValid() && m_mediaProvider && m_mediaProvider->collection(slot.collection);
        return isThere ? m_mediaProvider->slot(slot) : nullptr;
    }
    const auto entry = entryInFocus();
    return entry.valid && m_playlistProvider
               ? m_playlistProvider->entrySlot(static_cast<uint>(entry.playlist), entry.entry)
               : nullptr;
}

void SingleMediaModel::setMediaAddress(const QString& address)
{
    m_mediaAddress = address;
    const auto slot = getMediaSlotPtr();
    m_contentUrl = slot ? slot->contentUrl() : QUrl();
    Q_EMIT mediaAddressChanged(m_mediaAddress);
    onReset();
}

void SingleMediaModel::onReset()
{
    beginResetModel();
    const auto slot = getMediaSlotPtr();
    m_contentUrl = slot ? slot->contentUrl() : QUrl();
    m_metadata = m_aggregator ? m_aggregator->metadata(m_contentUrl) : nullptr;
    endResetModel();
}

void SingleMediaModel::onMetadataChanged(QUrl mediaUrl)
{
    if (mediaUrl == m_contentUrl && !mediaUrl.isEmpty())
        onReset();
}

void SingleMediaModel::onProviderReset()
{
    onReset();
}

void SingleMediaModel::onPlaylistModified(uint playlistIndex)
{
    const auto entry = entryInFocus();
    if (entry.valid && static_cast<uint>(entry.playlist) == playlistIndex)
        onReset();
    else
        Q_EMIT dataChanged(index(0, UsedInColumn), index(0, UsedInColumn));
}

void SingleMediaModel::onEntryModified(uint playlistIndex, EntryAddress entryAddress)
{
    const auto entry = entryInFocus();
    if (entry.valid && static_cast<uint>(entry.playlist) == playlistIndex && entry.entry == entryAddress)
        onReset();
    else
        Q_EMIT dataChanged(index(0, UsedInColumn), index(0, UsedInColumn));
}

void SingleMediaModel::onCollectionModified(uint collection)
{
    const auto slot = MediaUtils::isSlotAddress(m_mediaAddress) ? MediaUtils::parseSlotAddress(m_mediaAddress)
                                                                : MediaAddress();
    if (slot.isValid() && static_cast<uint>(slot.collection) == collection)
        onReset();
    else
        Q_EMIT dataChanged(index(0, UsedInColumn), index(0, UsedInColumn));
}

void SingleMediaModel::onSlotModified(MediaAddress address)
{
    // A focus on an entry hears of its slot through the entry.
    if (QString::fromStdString(address.toString()) == m_mediaAddress)
        onReset();
}

} // namespace vantrel
