#pragma once

#include "common/media/address/mediastate.h"
#include "common/media/net/metadataprovider.h"
#include "tarn/media/channelenums.h"
#include "tarn/media/entryaddress.h"
#include "tarn/media/mediaaddress.h"
#include "tarn/media/playenums.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QUrl>

namespace vantrel {

class AbstractMediaLibraryProvider;
class AbstractPlaylistProvider;
class GUIPlayback;
class GuiMediaSlot;

/// Tells what a media item is doing: what the channels play, and of the rest whether it can be played. The
/// session owns it; main thread only.
class MediaStateProvider : public QObject
{
    Q_OBJECT

public:
    MediaStateProvider(GUIPlayback* preview, GUIPlayback* program, AbstractPlaylistProvider* playlistProvider,
                       AbstractMediaLibraryProvider* libraryProvider, MetadataProvider* metadataProvider,
                       QObject* parent = nullptr);

    /// By content URL: what is known of the file alone.
    MediaState mediaState(const QUrl& mediaUrl) const;
    /// By slot or entry: a channel that plays it wins, program before preview.
    MediaState mediaState(const MediaAddress& address);
    MediaState mediaState(int playlist, const EntryAddress& address);
    /// The same, asking nobody for what is not known yet.
    MediaState knownMediaState(const MediaAddress& address, const QUrl& mediaUrl) const;
    MediaState programMediaState(int channel) const;
    MediaState previewMediaState(int channel) const;
    /// UnknownState when the channel does not play it.
    MediaState programMediaState(const MediaAddress& address) const;
    MediaState previewMediaState(const MediaAddress& address) const;
    MediaState programMediaState(int playlist, const EntryAddress& address) const;
    MediaState previewMediaState(int playlist, const EntryAddress& address) const;
    /// As mediaState(url), but what is not known yet is asked for.
    MediaState metadataMediaState(const QUrl& mediaUrl);
    void setMetadataState(const QUrl& mediaUrl, MediaState state);
    /// Forgets all and reads the channels anew.
    void reset();

    static bool isPlayingState(MediaState state) { return state < MediaState::Playable; }
    static MediaState sourcePlayStateToMediaState(SourcePlayState state, PlaybackViewMode mode);
    static MediaState metadataToMediaState(const std::shared_ptr<MediaMetadata>& metadata);

Q_SIGNALS:
    void metadataChanged(QUrl mediaUrl, vantrel::MediaMetadataPtr metadata);
    void metadataInvalidated(QUrl mediaUrl);
    void mediaStateChanged(QUrl mediaUrl, vantrel::MediaState state);

private:
    struct ChannelState
    {
        QUrl url; // of the content
        MediaState state = MediaState::UnknownState;
    };

    void readChannels();
    void forgetMetadataState(const QUrl& mediaUrl);
    void programMediaStateChanged();
    void previewMediaStateChanged();
    void setProgramState(int channel, const QUrl& url, MediaState state);
    void setPreviewState(int channel, const QUrl& url, MediaState state);
    void updateMediaStates(const QUrl& oldUrl, const QUrl& newUrl);
    std::shared_ptr<const GuiMediaSlot> slotOf(const QString& mediaAddress) const;
    MediaState stateOf(const GUIPlayback* playback, PlaybackViewMode mode, const MediaAddress& address) const;
    MediaState stateOf(const GUIPlayback* playback, PlaybackViewMode mode, int playlist,
                       const EntryAddress& address) const;
    MediaState slotState(const std::shared_ptr<const GuiMediaSlot>& slot);

    QPointer<GUIPlayback> m_preview;
    QPointer<GUIPlayback> m_program;
    QPointer<AbstractPlaylistProvider> m_playlistProvider;
    QPointer<AbstractMediaLibraryProvider> m_libraryProvider;
    QPointer<MetadataProvider> m_metadataProvider;
    QMap<int, ChannelState> m_programStates;
    QMap<int, ChannelState> m_previewStates;
    QHash<QUrl, MediaState> m_metadataStates;
};

} // namespace vantrel
