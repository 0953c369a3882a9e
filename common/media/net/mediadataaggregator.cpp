#include "common/media/net/mediadataaggregator.h"

#include "common/media/address/medialogging.h"
#include "common/media/address/showntext.h"
#include "common/media/net/mediastateprovider.h"
#include "tarn/media/mediaenums.h"

namespace vantrel {

namespace {

ThumbnailPtr placeholder(const QString& path)
{
    return std::make_shared<const QPixmap>(path);
}

} // namespace

MediaDataAggregator::MediaDataAggregator(MetadataProvider* metadataProvider,
                                         ThumbnailProvider* thumbnailProvider,
                                         MediaStateProvider* stateProvider, QObject* parent)
    : QObject(parent)
    , m_metadataProvider(metadataProvider)
    , m_thumbnailProvider(thumbnailProvider)
    , m_stateProvider(stateProvider)
    // What is not known yet is most often a video.
    , m_genericPlaceholder(placeholder(QStringLiteral(":/icons/placeholder_video_large.svg")))
    , m_imagePlaceholder(placeholder(QStringLiteral(":/icons/placeholder_image_large.svg")))
    , m_audioPlaceholder(placeholder(QStringLiteral(":/icons/placeholder_audio_large.svg")))
    , m_videoPlaceholder(placeholder(QStringLiteral(":/icons/placeholder_video_large.svg")))
{
    connect(metadataProvider, &MetadataProvider::metadataChanged, this,
            &MediaDataAggregator::handleMetadataChanged);
    connect(metadataProvider, &MetadataProvider::metadataInvalidated, this, [this](const QUrl& mediaUrl) {
        forget(mediaUrl);
        Q_EMIT metadataInvalidated(mediaUrl);
    });
    connect(thumbnailProvider, &ThumbnailProvider::thumbnailChanged, this,
            &MediaDataAggregator::handleThumbnailChanged);
    connect(thumbnailProvider, &ThumbnailProvider::thumbnailInvalidated, this,
            &MediaDataAggregator::handleThumbnailInvalidated);
    connect(stateProvider, &MediaStateProvider::mediaStateChanged, this,
            [this](const QUrl& mediaUrl) { Q_EMIT mediaStateChanged(mediaUrl); });
}

MediaMetadataPtr MediaDataAggregator::metadata(const QUrl& mediaUrl)
{
    return m_metadataProvider ? m_metadataProvider->getMetadata(mediaUrl) : nullptr;
}

ThumbnailPtr MediaDataAggregator::thumbnail(const QUrl& mediaUrl)
{
    const ThumbnailPtr found = m_thumbnailProvider ? m_thumbnailProvider->getThumbnail(mediaUrl) : nullptr;
    return found && !found->isNull() ? found : getPlaceholderThumbnail(mediaUrl);
}

ThumbnailPtr MediaDataAggregator::knownThumbnail(const QUrl& mediaUrl) const
{
    const ThumbnailPtr found =
        m_thumbnailProvider ? m_thumbnailProvider->getThumbnailFromCache(mediaUrl) : nullptr;
    return found && !found->isNull() ? found : nullptr;
}

MediaMetadataPtr MediaDataAggregator::knownMetadata(const QUrl& mediaUrl) const
{
    return m_metadataProvider ? m_metadataProvider->getMetadataFromCache(mediaUrl) : nullptr;
}

MediaState MediaDataAggregator::mediaState(const QUrl& mediaUrl) const
{
    return m_stateProvider ? m_stateProvider->mediaState(mediaUrl) : MediaState::UnknownState;
}

MediaState MediaDataAggregator::metadataMediaState(const QUrl& mediaUrl)
{
    return m_stateProvider ? m_stateProvider->metadataMediaState(mediaUrl) : MediaState::UnknownState;
}

MediaState MediaDataAggregator::previewMediaState(int channel) const
{
    return m_stateProvider ? m_stateProvider->previewMediaState(channel) : MediaState::UnknownState;
}

MediaState MediaDataAggregator::programMediaState(int channel) const
{
    return m_stateProvider ? m_stateProvider->programMediaState(channel) : MediaState::UnknownState;
}

std::unordered_set<MediaCaveat> MediaDataAggregator::mediaCaveats(const QUrl& mediaUrl)
{
    const MediaMetadataPtr found = metadata(mediaUrl);
    return found ? found->getCaveats() : std::unordered_set<MediaCaveat>();
}

QStringList MediaDataAggregator::mediaCaveatsDescribed(const QUrl& mediaUrl)
{
    const MediaMetadataPtr found = metadata(mediaUrl);
    return found ? caveatTexts(*found) : QStringList();
}

QStringList MediaDataAggregator::caveatTexts(const MediaMetadata& metadata) const
{
    // The server's own sentence says more of the file than any text that is known here.
    std::unordered_set<MediaCaveat> untold = metadata.getCaveats();
    QStringList told;
    std::erase_if(untold, [&](MediaCaveat caveat) {
        const std::string text = metadata.getCaveatText(caveat);
        if (!text.empty())
            told.append(shownText(QString::fromStdString(text)));
        return !text.empty();
    });
    return told + describeCaveats(untold);
}

QStringList MediaDataAggregator::knownFaults(const QUrl& mediaUrl) const
{
    const MediaMetadataPtr found = knownMetadata(mediaUrl);
    return found ? faultsOf(*found) : m_faults.value(mediaUrl);
}

QStringList MediaDataAggregator::faultsOf(const MediaMetadata& metadata) const
{
    QStringList faults = caveatTexts(metadata);
    if (const QString reason = whyNotPlayable(metadata); !reason.isEmpty())
        faults.prepend(reason);
    return faults;
}

void MediaDataAggregator::forget(const QUrl& mediaUrl)
{
    m_sizes.remove(mediaUrl);
    m_faults.remove(mediaUrl);
}

void MediaDataAggregator::forgetAll()
{
    m_sizes.clear();
    m_faults.clear();
}

QString MediaDataAggregator::whyNotPlayable(const MediaMetadata& metadata)
{
    if (metadata.getIsPlayable())
        return {};
    const QString reason = shownText(QString::fromStdString(metadata.getError())).simplified();
    return reason.isEmpty() ? tr("The server cannot play it, and does not say why.") : reason;
}

QStringList MediaDataAggregator::describeCaveats(const std::unordered_set<MediaCaveat>& caveats) const
{
    QStringList texts;
    for (const MediaCaveat caveat : caveats) {
        if (caveat == MediaCaveat::UnsupportedAudio)
            texts.append(tr("Media contains unsupported audio"));
        else if (caveat == MediaCaveat::CutOff)
            texts.append(tr("The file ends too early. Copy it again."));
        else if (caveat == MediaCaveat::MissingPictures)
            texts.append(tr("Pictures of the sequence are missing."));
        else
            qCWarning(lcMedia) << "Unknown MediaCaveat, please add description to "
                                  "MediaDataAggregator::describeCaveats";
    }
    return texts;
}

void MediaDataAggregator::refreshData(const QUrl& mediaUrl)
{
    if (m_metadataProvider) {
        const MediaMetadataPtr known = m_metadataProvider->getMetadataFromCache(mediaUrl);
        if (known && !known->getIsPlayable()) // as one that was missing
            m_metadataProvider->invalidateMetadata(mediaUrl, false);
        m_metadataProvider->getMetadata(mediaUrl);
    }
    if (m_thumbnailProvider)
        m_thumbnailProvider->getThumbnail(mediaUrl);
}

void MediaDataAggregator::invalidateData(const QUrl& mediaUrl, bool terminate)
{
    if (m_thumbnailProvider)
        m_thumbnailProvider->invalidateThumbnail(mediaUrl, terminate);
    if (m_metadataProvider)
        m_metadataProvider->invalidateMetadata(mediaUrl, terminate);
}

void MediaDataAggregator::invalidateAllData()
{
    if (m_thumbnailProvider)
        m_thumbnailProvider->invalidateAll();
    forgetAll();
    if (m_metadataProvider)
        m_metadataProvider->invalidateAll();
}

void MediaDataAggregator::handleMetadataChanged(const QUrl& mediaUrl, const MediaMetadataPtr& metadata)
{
    if (metadata && metadata->getFileSize())
        m_sizes.insert(mediaUrl, *metadata->getFileSize());
    // A state is kept of every file; what is shown of a bad one must not be without its reason.
    if (const QStringList faults = metadata ? faultsOf(*metadata) : QStringList(); !faults.isEmpty())
        m_faults.insert(mediaUrl, faults);
    else
        m_faults.remove(mediaUrl);
    if (m_thumbnailProvider && !knownThumbnail(mediaUrl))
        Q_EMIT thumbnailChanged(mediaUrl, selectPlaceholderThumbnailForMetadata(metadata));
    if (m_stateProvider)
        m_stateProvider->setMetadataState(mediaUrl, MediaStateProvider::metadataToMediaState(metadata));
    Q_EMIT metadataChanged(mediaUrl, metadata);
}

void MediaDataAggregator::handleThumbnailChanged(const QUrl& mediaUrl, const ThumbnailPtr& thumbnail)
{
    qCDebug(lcMedia) << "Thumbnail has changed for" << mediaUrl;
    Q_EMIT thumbnailChanged(mediaUrl, thumbnail);
}

void MediaDataAggregator::handleThumbnailInvalidated(const QUrl& mediaUrl)
{
    qCDebug(lcMedia) << "Thumbnail has invalidated for" << mediaUrl;
    Q_EMIT thumbnailInvalidated(mediaUrl);
}

ThumbnailPtr
MediaDataAggregator::selectPlaceholderThumbnailForMetadata(const MediaMetadataPtr& metadata) const
{
    switch (metadata ? metadata->getMediaType() : MediaType::Unknown) {
    case MediaType::VideoFile:
    case MediaType::ImageSequence:
        return m_videoPlaceholder;
    case MediaType::AudioFile:
        return m_audioPlaceholder;
    case MediaType::ImageFile:
        return m_imagePlaceholder;
    case MediaType::Unknown:
        break;
    }
    return m_genericPlaceholder;
}

ThumbnailPtr MediaDataAggregator::getPlaceholderThumbnail(const QUrl& mediaUrl) const
{
    return selectPlaceholderThumbnailForMetadata(
        m_metadataProvider ? m_metadataProvider->getMetadataFromCache(mediaUrl) : nullptr);
}

} // namespace vantrel
