#include "common/media/net/mediastateprovider.h"

#include "common/media/address/medialogging.h"
#include "common/media/address/mediautils.h"
#include "common/media/items/abstractmedialibraryprovider.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guimediaslot.h"
#include "common/session/mirror/guiplayback.h"

namespace vantrel {

using media::MediaUtils;

namespace {

constexpr int onlyChannel = 0;

} // namespace

MediaStateProvider::MediaStateProvider(GUIPlayback* preview, GUIPlayback* program,
                                       AbstractPlaylistProvider* playlistProvider,
                                       AbstractMediaLibraryProvider* libraryProvider,
                                       MetadataProvider* metadataProvider, QObject* parent)
    : QObject(parent)
    , m_preview(preview)
    , m_program(program)
    , m_playlistProvider(playlistProvider)
    , m_libraryProvider(libraryProvider)
    , m_metadataProvider(metadataProvider)
{
    if (preview) {
        connect(preview, &GUIPlayback::mediaChanged, this, &MediaStateProvider::previewMediaStateChanged);
        connect(preview, &GUIPlayback::stateChanged, this, &MediaStateProvider::previewMediaStateChanged);
        connect(preview, &GUIPlayback::reset, this, &MediaStateProvider::previewMediaStateChanged);
    }
    if (program) {
        connect(program, &GUIPlayback::mediaChanged, this, &MediaStateProvider::programMediaStateChanged);
        connect(program, &GUIPlayback::stateChanged, this, &MediaStateProvider::programMediaStateChanged);
        connect(program, &GUIPlayback::reset, this, &MediaStateProvider::programMediaStateChanged);
    }
    if (metadataProvider) {
        connect(metadataProvider, &MetadataProvider::metadataChanged, this,
                &MediaStateProvider::metadataChanged);
        connect(metadataProvider, &MetadataProvider::metadataInvalidated, this,
                &MediaStateProvider::metadataInvalidated);
        connect(metadataProvider, &MetadataProvider::metadataInvalidated, this,
                &MediaStateProvider::forgetMetadataState);
    }
    // What a channel's address names may come later than the channel; playlists are made after the library.
    if (playlistProvider)
        connect(playlistProvider, &AbstractPlaylistProvider::reset, this, &MediaStateProvider::readChannels);
    else if (libraryProvider)
        connect(libraryProvider, &AbstractMediaLibraryProvider::reset, this,
                &MediaStateProvider::readChannels);
    reset();
}

MediaState MediaStateProvider::sourcePlayStateToMediaState(SourcePlayState state, PlaybackViewMode mode)
{
    const bool program = mode == PlaybackViewMode::Program;
    if (!program && mode != PlaybackViewMode::Preview)
        return MediaState::UnknownState;
    switch (state) {
    case SourcePlayState::Play:
        return program ? MediaState::ProgramPlay : MediaState::PreviewPlay;
    case SourcePlayState::Pause:
        return program ? MediaState::ProgramPause : MediaState::PreviewPause;
    case SourcePlayState::Stop:
        return program ? MediaState::ProgramStop : MediaState::PreviewStop;
    }
    return MediaState::UnknownState;
}

MediaState MediaStateProvider::metadataToMediaState(const std::shared_ptr<MediaMetadata>& metadata)
{
    if (!metadata)
        return MediaState::UnknownState;
    if (!metadata->getIsPlayable())
        return MediaState::NotPlayable;
    return metadata->getCaveats().empty() ? MediaState::Playable : MediaState::PlayableWithCaveats;
}

MediaState MediaStateProvider::mediaState(const QUrl& mediaUrl) const
{
    return m_metadataStates.value(mediaUrl, MediaState::UnknownState);
}

MediaState MediaStateProvider::mediaState(const MediaAddress& address)
{
    if (const MediaState program = programMediaState(address); isPlayingState(program))
        return program;
    if (const MediaState preview = previewMediaState(address); isPlayingState(preview))
        return preview;
    return slotState(m_libraryProvider ? m_libraryProvider->slot(address) : nullptr);
}

MediaState MediaStateProvider::knownMediaState(const MediaAddress& address, const QUrl& mediaUrl) const
{
    if (const MediaState program = programMediaState(address); isPlayingState(program))
        return program;
    if (const MediaState preview = previewMediaState(address); isPlayingState(preview))
        return preview;
    return mediaState(mediaUrl);
}

MediaState MediaStateProvider::mediaState(int playlist, const EntryAddress& address)
{
    if (const MediaState program = programMediaState(playlist, address); isPlayingState(program))
        return program;
    if (const MediaState preview = previewMediaState(playlist, address); isPlayingState(preview))
        return preview;
    return slotState(m_playlistProvider ? m_playlistProvider->entrySlot(static_cast<uint>(playlist), address)
                                        : nullptr);
}

MediaState MediaStateProvider::slotState(const std::shared_ptr<const GuiMediaSlot>& slot)
{
    return slot ? metadataMediaState(slot->contentUrl()) : MediaState::UnknownState;
}

MediaState MediaStateProvider::programMediaState(int channel) const
{
    return m_programStates.value(channel).state;
}

MediaState MediaStateProvider::previewMediaState(int channel) const
{
    return m_previewStates.value(channel).state;
}

MediaState MediaStateProvider::programMediaState(const MediaAddress& address) const
{
    return stateOf(m_program, PlaybackViewMode::Program, address);
}

MediaState MediaStateProvider::previewMediaState(const MediaAddress& address) const
{
    return stateOf(m_preview, PlaybackViewMode::Preview, address);
}

MediaState MediaStateProvider::programMediaState(int playlist, const EntryAddress& address) const
{
    return stateOf(m_program, PlaybackViewMode::Program, playlist, address);
}

MediaState MediaStateProvider::previewMediaState(int playlist, const EntryAddress& address) const
{
    return stateOf(m_preview, PlaybackViewMode::Preview, playlist, address);
}

// A slot plays also when it does so as the entry of a playlist.
MediaState MediaStateProvider::stateOf(const GUIPlayback* playback, PlaybackViewMode mode,
                                       const MediaAddress& address) const
{
    if (!playback || !address.isValid() || playback->playingSlotAddress() != address)
        return MediaState::UnknownState;
    return sourcePlayStateToMediaState(playback->state(), mode);
}

MediaState MediaStateProvider::stateOf(const GUIPlayback* playback, PlaybackViewMode mode, int playlist,
                                       const EntryAddress& address) const
{
    if (!playback || !address.isValid() || playback->playingEntryAddress() != address)
        return MediaState::UnknownState;
    const media::PlaylistAndEntry playing = MediaUtils::parsePlaylistAddress(playback->media());
    return playing.valid && playing.playlist == playlist && playing.entry == address
               ? sourcePlayStateToMediaState(playback->state(), mode)
               : MediaState::UnknownState;
}

MediaState MediaStateProvider::metadataMediaState(const QUrl& mediaUrl)
{
    const auto known = m_metadataStates.constFind(mediaUrl);
    if (known != m_metadataStates.constEnd())
        return *known;
    if (m_metadataProvider)
        m_metadataProvider->getMetadata(mediaUrl);
    return MediaState::UnknownState;
}

void MediaStateProvider::setMetadataState(const QUrl& mediaUrl, MediaState state)
{
    const MediaState old = mediaState(mediaUrl);
    if (old == state)
        return;
    qCDebug(lcMedia) << "MediaStateProvider::setMediaState, hasChanged," << mediaUrl << "to state"
                     << MediaUtils::describeMediaState(state);
    m_metadataStates.insert(mediaUrl, state);
    Q_EMIT mediaStateChanged(mediaUrl, state);
}

/// Who shows the state asks again, and so learns what the file is now.
void MediaStateProvider::forgetMetadataState(const QUrl& mediaUrl)
{
    if (m_metadataStates.remove(mediaUrl))
        Q_EMIT mediaStateChanged(mediaUrl, MediaState::UnknownState);
}

void MediaStateProvider::reset()
{
    m_programStates.clear();
    m_previewStates.clear();
    m_metadataStates.clear();
    readChannels();
}

void MediaStateProvider::readChannels()
{
    programMediaStateChanged();
    previewMediaStateChanged();
}

std::shared_ptr<const GuiMediaSlot> MediaStateProvider::slotOf(const QString& mediaAddress) const
{
    if (MediaUtils::isSlotAddress(mediaAddress)) {
        const MediaAddress slot = MediaUtils::parseSlotAddress(mediaAddress);
        return slot.isValid() && m_libraryProvider ? m_libraryProvider->slot(slot) : nullptr;
    }
    if (!MediaUtils::isPlaylistAddress(mediaAddress))
        return nullptr;
    const media::PlaylistAndEntry entry = MediaUtils::parsePlaylistAddress(mediaAddress);
    return entry.valid && m_playlistProvider
               ? m_playlistProvider->entrySlot(static_cast<uint>(entry.playlist), entry.entry)
               : nullptr;
}

void MediaStateProvider::programMediaStateChanged()
{
    if (!m_program)
        return;
    const QString address = m_program->media();
    const std::shared_ptr<const GuiMediaSlot> slot = slotOf(address);
    const MediaState state = MediaUtils::isMediaAddress(address)
                                 ? sourcePlayStateToMediaState(m_program->state(), PlaybackViewMode::Program)
                                 : MediaState::ProgramStop;
    setProgramState(onlyChannel, slot ? slot->contentUrl() : QUrl(), state);
}

void MediaStateProvider::previewMediaStateChanged()
{
    if (!m_preview)
        return;
    const QString address = m_preview->media();
    const std::shared_ptr<const GuiMediaSlot> slot = slotOf(address);
    const MediaState state = MediaUtils::isMediaAddress(address)
                                 ? sourcePlayStateToMediaState(m_preview->state(), PlaybackViewMode::Preview)
                                 : MediaState::PreviewStop;
    setPreviewState(onlyChannel, slot ? slot->contentUrl() : QUrl(), state);
}

void MediaStateProvider::setProgramState(int channel, const QUrl& url, MediaState state)
{
    const QUrl old = m_programStates.value(channel).url;
    m_programStates.insert(channel, {url, state});
    updateMediaStates(old, url);
}

void MediaStateProvider::setPreviewState(int channel, const QUrl& url, MediaState state)
{
    const QUrl old = m_previewStates.value(channel).url;
    m_previewStates.insert(channel, {url, state});
    updateMediaStates(old, url);
}

void MediaStateProvider::updateMediaStates(const QUrl& oldUrl, const QUrl& newUrl)
{
    if (!oldUrl.isEmpty() && oldUrl != newUrl)
        Q_EMIT mediaStateChanged(oldUrl, mediaState(oldUrl));
    if (!newUrl.isEmpty())
        Q_EMIT mediaStateChanged(newUrl, mediaState(newUrl));
}

} // namespace vantrel
