// What PlaybackWidget shows and allows for the media on its channel.
#include "common/command/execute.h"
#include "common/command/playback/playmediacommand.h"
#include "common/command/refusal.h"
#include "common/media/address/mediautils.h"
#include "common/media/edit/implmediacollectionmanager.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/media/models/playbackmodel.h"
#include "common/media/net/defaultresourcestatusprovider.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/playback/channelhint.h"
#include "common/playback/durationeditwidget.h"
#include "common/playback/endactionwidget.h"
#include "common/playback/endpointtimecodes.h"
#include "common/playback/levelmeter.h"
#include "common/playback/picturenotice.h"
#include "common/playback/playbackcontrols.h"
#include "common/playback/playbacklogging.h"
#include "common/playback/playbackpreview.h"
#include "common/playback/playbacktimecodes.h"
#include "common/playback/playbackwidget.h"
#include "common/playback/playbackwidgetfooter.h"
#include "common/playback/playbackwidgetheader.h"
#include "common/playback/seekslider.h"
#include "common/session/link/previewthread.h"
#include "common/session/link/signalrelay.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/session.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/mediametadata.h"
#include "tarn/media/playenums.h"
#include "tarn/media/playlistentry.h"

namespace vantrel {

using media::MediaUtils;

void PlaybackWidget::connectSources()
{
    connect(m_model, &PlaybackModel::dataChanged, this, &PlaybackWidget::onPlaybackDataChanged);
    connect(m_session->preview(), &PreviewThread::previewFrame, m_preview, &PlaybackPreview::onFrame);
    connect(m_session->preview(), &PreviewThread::levelsChanged, this,
            [this](const std::string& source, const AudioLevels& levels) {
                if (!m_session->isConnected()) // what was still waiting when the link went says nothing
                    return;
                m_footer->levelMeter()->onLevels(source, levels);
                m_notice->levels()->onLevels(source, levels);
            });
    for (LevelMeter* meter : {m_footer->levelMeter(), m_notice->levels()})
        connect(m_session, &Session::disconnected, meter, &LevelMeter::clear);
    connect(m_session->playlistProvider(), &PlaylistProvider::reset, this,
            &PlaybackWidget::handlePlaylistReset);
    connect(m_session->mediaLibraryProvider(), &MediaLibraryProvider::editsSettled, this,
            &PlaybackWidget::refreshPlaybackControls);
    m_resourceStatusProvider = m_session->resourceStatusProvider();
    connect(m_session, &Session::connected, this, &PlaybackWidget::tellConstraint);
    tellConstraint();
    if (MediaDataAggregator* aggregator = m_session->mediaDataAggregator())
        connect(aggregator, &MediaDataAggregator::metadataChanged, this,
                &PlaybackWidget::handleMetadataChanged);
    if (m_playback) {
        connect(m_playback, &GUIPlayback::mediaChanged, this, &PlaybackWidget::handleMediaChanged);
        connect(m_playback, &GUIPlayback::heldMediaChanged, this, &PlaybackWidget::updateMediaAddress);
        connect(m_playback, &GUIPlayback::mediaPositionChanged, this, &PlaybackWidget::showPosition);
        connect(m_playback, &GUIPlayback::reset, this, &PlaybackWidget::showPositionAnew);
        connect(m_playback, &GUIPlayback::stateChanged, this, &PlaybackWidget::updateNotice);
        connect(m_playback, &GUIPlayback::fpsChanged, this, &PlaybackWidget::updateNotice);
    }
}

/// A new connection knows nothing of what is short of resources: it is told again.
void PlaybackWidget::tellConstraint()
{
    if (m_resourceStatusProvider && isPreview())
        m_resourceStatusProvider->setIsConstrained(m_viewMode, m_isResourceConstrained);
}

std::shared_ptr<MediaMetadata> PlaybackWidget::getMediaMetadata() const
{
    const auto slot = m_playback ? m_playback->playingSlot() : nullptr;
    MediaDataAggregator* aggregator = m_session->mediaDataAggregator();
    return slot && aggregator ? aggregator->metadata(slot->contentUrl()) : nullptr;
}

void PlaybackWidget::updateMediaAddress()
{
    if (MediaUtils::isPlaylistAddress(m_mediaAddress)) {
        const auto entry = MediaUtils::parsePlaylistAddress(m_mediaAddress);
        Q_EMIT mediaAddressPlaylist(entry.valid ? entry.playlist : -1);
    } else {
        Q_EMIT mediaAddressPlaylist(-1);
    }
    const QString held = m_playback ? m_playback->heldMedia() : QString();
    m_hint->setVisible(m_mediaAddress.isEmpty() && held.isEmpty());
    m_notice->setHasMedia(!m_mediaAddress.isEmpty() || !held.isEmpty());
    if (!MediaUtils::isMediaAddress(m_mediaAddress)) {
        setUnread(false);
        setHasValidMedia(false);
        m_slider->setEnabled(!held.isEmpty()); // its playhead runs on
        m_hasTransport = !held.isEmpty();      // it can still be paused and stopped
        updateTransport();
        clearMediaState();
        m_header->setMediaAddress({});
        m_header->setMediaName(
            held.isEmpty() ? QString() : tr("No longer in the library: %1").arg(QUrl(held).fileName()));
        return;
    }
    QString name;
    const bool isFound = findMediaName(name);
    setHasValidMedia(isFound);
    const MediaLibraryApi* library = m_session->getMediaLibraryApi();
    const bool isUnread = !isFound && library && library->reading() != MediaLibraryApi::Reading::Done;
    setUnread(isUnread);
    if (isUnread) { // the server knows it, and plays it all the same
        m_hasTransport = true;
        updateTransport();
    }
    m_header->setMediaAddress(isFound || isUnread ? m_mediaAddress : QString());
    m_header->setMediaName(isFound ? name : QString());
}

/// The points of a slot that nobody has read stand nowhere.
void PlaybackWidget::setUnread(bool isUnread)
{
    m_isUnread = isUnread;
    m_endpoints->setUnknown(isUnread);
    showMarkers();
}

void PlaybackWidget::showMarkers()
{
    const auto slot = m_playback ? m_playback->playingSlot() : nullptr;
    const bool isInfinite = slot && slot->durationType() == MediaDurationType::Infinite;
    m_slider->setInpointOutpointHidden(m_isUnread || isInfinite);
}

bool PlaybackWidget::findMediaName(QString& name) const
{
    MediaLibraryModel* library = m_session->mediaLibraryModel();
    const QModelIndex index = library->getSlotIndexFromMediaAddress(m_mediaAddress);
    if (!index.isValid()) {
        qCWarning(lcPlayback) << "Invalid model index, Failed to acquire media name";
        return false;
    }
    const QVariant slot = library->data(index, MediaLibraryModel::NumberRole);
    if (!slot.isValid() || slot.toInt() < 1) {
        qCWarning(lcPlayback) << "Invalid slot number, cannot use:" << slot;
        return false;
    }
    const QVariant text = library->data(index, MediaLibraryModel::NameRole);
    if (!text.isValid()) {
        qCWarning(lcPlayback) << "Invalid model name, Failed to acquire media name";
        return false;
    }
    if (!text.canConvert<QString>()) {
        qCWarning(lcPlayback) << "Invalid name, cannot use:" << text;
        return false;
    }
    name = text.toString();
    if (name.isEmpty())
        name = tr("Unnamed media");
    return true;
}

void PlaybackWidget::clearMediaState()
{
    MediaLibraryModel* library = m_session->mediaLibraryModel();
    if (isPreview())
        library->setPreviewState(0, QString(), m_controls->state());
    else
        library->setProgramState(0, QString(), m_controls->state());
}

void PlaybackWidget::handlePlaylistReset()
{
    // A library that comes late heals a channel that knew no name.
    if (!m_hasValidMedia)
        updateMediaAddress();
}

void PlaybackWidget::handleMediaChanged()
{
    const auto slot = m_playback ? m_playback->playingSlot() : nullptr;
    if (slot)
        handleMetadataChanged(slot->contentUrl(), getMediaMetadata());
}

void PlaybackWidget::handleMetadataChanged(QUrl url, std::shared_ptr<MediaMetadata> metadata)
{
    const auto slot = m_playback ? m_playback->playingSlot() : nullptr;
    if (!slot || slot->contentUrl() != url)
        return;
    if (metadata)
        qCDebug(lcPlayback) << "Media" << m_mediaAddress
                            << "metadata changed. Media type:" << toStr(metadata->getMediaType());
    else
        qCDebug(lcPlayback) << "Media" << m_mediaAddress << "metadata cleared";
    refreshPlaybackControls();
}

void PlaybackWidget::refreshPlaybackControls()
{
    const auto metadata = getMediaMetadata();
    const bool isStill = metadata && metadata->getMediaType() == MediaType::ImageFile;
    const auto slot = m_playback ? m_playback->playingSlot() : nullptr;
    const bool isInfinite = slot && slot->durationType() == MediaDurationType::Infinite;

    m_header->setHasInfiniteDuration(isInfinite);
    m_endpoints->setVisible(!isStill);
    m_timecodes->setRemainingTimeVisible(!isInfinite);
    m_footer->endAction()->setDisabled(isInfinite);
    m_controls->setSeekButtonsEnabled(!isStill);
    m_controls->setPointsEnabled(!isStill && slot);
    m_slider->setSeekBarEnabled(!isStill);
    m_slider->setInpointOutpointEnabled(!isStill);
    showMarkers();
    m_slider->setPlayheadFixed(isInfinite);
    m_durationEdit->setVisible(isStill);
    m_durationEdit->setEnabled(isPreview());
    m_durationEdit->setDurationType(isInfinite ? DurationTypeWidget::Infinite : DurationTypeWidget::Manual);
    m_durationEdit->setDurationSeconds(slot ? slot->duration() : 0.0);
    m_timecodes->setHeldAtEnd(isStill && !isInfinite);
    updateNotice();
}

/// A file that is gone tells no type: its slot knows what it was.
bool PlaybackWidget::isSoundOnly(const MediaMetadata* metadata) const
{
    if (!metadata)
        return false;
    const auto slot = m_playback ? m_playback->playingSlot() : nullptr;
    return metadata->getMediaType() == MediaType::AudioFile ||
           (!metadata->getIsPlayable() && slot && slot->mediaType() == MediaType::AudioFile);
}

void PlaybackWidget::updateNotice()
{
    const auto metadata = getMediaMetadata();
    const bool isUnplayable = metadata && !metadata->getIsPlayable();
    const QString reason = isUnplayable ? MediaDataAggregator::whyNotPlayable(*metadata) : QString();
    // What was never opened has no rate, and nothing to show in any state.
    const bool isOpen = m_playback && m_playback->fps() > 0.0;
    m_notice->setState(isOpen ? m_playback->state() : SourcePlayState::Stop);
    m_notice->setUnplayable(reason);
    m_notice->setSoundOnly(isSoundOnly(metadata.get()));
    if (std::exchange(m_unplayable, reason) != reason)
        Q_EMIT unplayableChanged();
}

QUrl PlaybackWidget::getPlayedSlotUrl() const
{
    const QString media = m_playback ? m_playback->media() : QString();
    if (media.isEmpty())
        return {};
    switch (m_playback->sourceMode()) {
    case SourceMode::Slot:
        return QUrl(media);
    case SourceMode::Playlist: {
        const auto [entry, slot] = m_session->mediaLibrary()->findEntryAndSlot(media.toStdString());
        return slot ? QUrl(QString::fromStdString(entry->getMediaUrl())) : QUrl();
    }
    default:
        return {};
    }
}

void PlaybackWidget::handleDurationChanged()
{
    const auto metadata = getMediaMetadata();
    if (!metadata || metadata->getMediaType() != MediaType::ImageFile) {
        qCWarning(lcPlayback) << "Duration was changed from the UI to non-still image media";
        return;
    }
    const double seconds = m_durationEdit->durationSeconds();
    const QUrl url = getPlayedSlotUrl();
    qCDebug(lcPlayback) << "Requested changing new duration" << seconds << "s for" << url;
    const MediaAddress slot = MediaUtils::parseSlotAddress(QString::fromUtf8(url.toEncoded()));
    if (!slot.isValid()) {
        qCWarning(lcPlayback) << "Unable to get slot from played media" << m_mediaAddress;
        return;
    }
    const bool isInfinite = m_durationEdit->durationType() == DurationTypeWidget::Infinite;
    ImplMediaCollectionManager manager(nullptr);
    if (manager.updateMediaDuration(slot.collection, slot.slot, seconds, isInfinite))
        Q_EMIT stillImageDurationChanged(seconds, isInfinite);
    else
        refreshPlaybackControls();
}

void PlaybackWidget::handleDragAndDrop(std::shared_ptr<GuiMediaItem> item)
{
    if (!item)
        return;
    if (m_isResourceConstrained) {
        qCDebug(lcPlayback) << "Ignoring a drop on the preview due resource constraints";
        return;
    }
    playDroppedItem(*item);
    Q_EMIT dropObjectReceived(item);
}

void PlaybackWidget::playDroppedItem(const GuiMediaItem& item)
{
    const auto play = [this](int of, const auto& at) {
        execute<PlayMediaCommand>(m_session->getQUndoStack(), "PlayMediaCommand", isPreview(), 0, of, at);
    };
    if (const auto* entry = dynamic_cast<const GuiPlaylistEntry*>(&item)) {
        play(static_cast<int>(entry->playlistNumber()), entry->address());
    } else if (const auto* slot = dynamic_cast<const GuiMediaSlot*>(&item)) {
        if (isPreview())
            m_session->signalRelay()->handleSetNavBar(1);
        play(slot->address().collection, slot->address().slot);
    } else if (const auto* playlist = dynamic_cast<const GuiPlaylist*>(&item)) {
        const auto entries = m_session->playlistProvider()->entries(playlist->number());
        if (entries.isEmpty())
            tellNotDone(tr("Play \"%1\"").arg(playlist->name()),
                        isPreview() ? tr("The playlist has no entries. Preview stays as it is.")
                                    : tr("The playlist has no entries. Program stays as it is."));
        else
            play(static_cast<int>(playlist->number()), entries.first()->address());
    }
}

} // namespace vantrel
