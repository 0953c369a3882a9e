#pragma once

#include "common/session/mirror/sceneobjectwrapper.h"
#include "tarn/media/channelenums.h"
#include "tarn/media/entryaddress.h"
#include "tarn/media/mediaaddress.h"
#include "tarn/media/playenums.h"

#include <memory>
#include <optional>

namespace vantrel {

class AbstractMediaLibraryProvider;
class AbstractPlaylistProvider;
class GuiMediaSlot;
class GuiPlaylistEntry;

/// Mirror of one playback of a channel (preview or program), joined with what the library knows of the media
/// that plays: in point, out point and duration are the playing slot's, and the server's own of what plays on
/// without one. All times are seconds.
class GUIPlayback : public SceneObjectWrapper
{
    Q_OBJECT
    Q_PROPERTY(QString media READ media WRITE setMedia NOTIFY mediaChanged)
    Q_PROPERTY(QString heldMedia READ heldMedia NOTIFY heldMediaChanged)
    Q_PROPERTY(QString nextMedia READ nextMedia NOTIFY nextMediaChanged)
    Q_PROPERTY(vantrel::EndAction endAction READ endAction WRITE setEndAction NOTIFY endActionChanged)
    Q_PROPERTY(vantrel::SourceMode sourceMode READ sourceMode NOTIFY sourceModeChanged)
    Q_PROPERTY(vantrel::AudioPlaybackDevice audioDevice READ audioDevice WRITE setAudioDevice NOTIFY
                   audioDeviceChanged)
    Q_PROPERTY(double audioOffset READ audioOffset NOTIFY audioOffsetChanged)
    Q_PROPERTY(double volume READ volume WRITE setVolume NOTIFY volumeChanged)
    Q_PROPERTY(bool muted READ muted WRITE setMuted NOTIFY mutedChanged)
    Q_PROPERTY(double inpoint READ inpoint WRITE setInpoint NOTIFY inpointChanged)
    Q_PROPERTY(std::optional<double> outpoint READ outpoint WRITE setOutpoint NOTIFY outpointChanged)
    Q_PROPERTY(double duration READ duration WRITE setDuration NOTIFY durationChanged)
    Q_PROPERTY(double mediaPosition READ mediaPosition WRITE setMediaPosition NOTIFY mediaPositionChanged)
    Q_PROPERTY(double fps READ fps WRITE setFps NOTIFY fpsChanged)
    Q_PROPERTY(vantrel::SourcePlayState state READ state WRITE setState NOTIFY stateChanged)

public:
    /// The providers must outlive the mirror; either may be null.
    GUIPlayback(AbstractPlaylistProvider* playlistProvider, AbstractMediaLibraryProvider* libraryProvider,
                QObject* parent = nullptr);
    ~GUIPlayback() override;

    QString media() const { return getProperty<QString>(m_info.media); }
    void setMedia(const QString& url);
    /// The content URL of what plays on though the library has it no more; empty while it has.
    QString heldMedia() const { return getProperty<QString>(m_info.heldMedia); }
    /// The entry that comes next in the list that plays, as the server will have it; empty where none does,
    /// and with a server that does not tell.
    QString nextMedia() const { return getProperty<QString>(m_info.nextMedia); }
    EndAction endAction() const { return getProperty<EndAction>(m_info.endAction); }
    void setEndAction(EndAction value) { setProperty(m_info.endAction, value); }
    SourceMode sourceMode() const { return getProperty<SourceMode>(m_info.sourceMode); }
    AudioPlaybackDevice audioDevice() const { return getProperty<AudioPlaybackDevice>(m_info.audioDevice); }
    void setAudioDevice(AudioPlaybackDevice value) { setProperty(m_info.audioDevice, value); }
    /// Seconds by which its sound is heard after its picture.
    double audioOffset() const { return getProperty<double>(m_info.audioOffset); }
    double volume() const { return getProperty<double>(m_info.volume); }
    void setVolume(double value) { setProperty(m_info.volume, value); }
    bool muted() const { return getProperty<bool>(m_info.muted); }
    void setMuted(bool value) { setProperty(m_info.muted, value); }
    double inpoint() const { return m_inpoint; }
    /// Also changes the playing slot in the library.
    void setInpoint(double seconds);
    /// Nothing means the end of the media.
    std::optional<double> outpoint() const { return m_outpoint; }
    void setOutpoint(std::optional<double> seconds);
    double duration() const { return m_duration; }
    void setDuration(double seconds);
    double mediaPosition() const { return getProperty<double>(m_info.mediaPosition); }
    void setMediaPosition(double value) { setProperty(m_info.mediaPosition, value); }
    double fps() const { return getProperty<double>(m_info.fps); }
    void setFps(double value) { setProperty(m_info.fps, value); }
    SourcePlayState state() const { return getProperty<SourcePlayState>(m_info.state); }
    void setState(SourcePlayState value) { setProperty(m_info.state, value); }

    /// Invalid, and null, unless a playlist entry plays.
    const EntryAddress& playingEntryAddress() const { return m_playingEntryAddress; }
    std::shared_ptr<const GuiPlaylistEntry> playingEntry() const { return m_playingEntry; }
    /// Invalid, and null, unless a slot of the library plays, by itself or in an entry.
    const MediaAddress& playingSlotAddress() const { return m_playingSlotAddress; }
    std::shared_ptr<const GuiMediaSlot> playingSlot() const { return m_playingSlot; }

Q_SIGNALS:
    void mediaChanged();
    void heldMediaChanged();
    void nextMediaChanged();
    void endActionChanged();
    void sourceModeChanged();
    void audioDeviceChanged();
    void audioOffsetChanged();
    void volumeChanged();
    void mutedChanged();
    void inpointChanged();
    void outpointChanged();
    void durationChanged();
    void mediaPositionChanged(double seconds);
    void fpsChanged();
    void stateChanged();

protected:
    void postSetObjectHook() override;
    void notifyPropertyChangedHook(const std::string& name) override;

private:
    struct PropertyChangeFlags
    {
        bool inpoint = false;
        bool outpoint = false;
        bool duration = false;
    };
    struct Info
    {
        const PropertyInfo* media = nullptr;
        const PropertyInfo* heldMedia = nullptr;
        const PropertyInfo* nextMedia = nullptr;
        const PropertyInfo* inpoint = nullptr;
        const PropertyInfo* outpoint = nullptr;
        const PropertyInfo* duration = nullptr;
        const PropertyInfo* endAction = nullptr;
        const PropertyInfo* sourceMode = nullptr;
        const PropertyInfo* audioDevice = nullptr;
        const PropertyInfo* audioOffset = nullptr;
        const PropertyInfo* volume = nullptr;
        const PropertyInfo* muted = nullptr;
        const PropertyInfo* mediaPosition = nullptr;
        const PropertyInfo* fps = nullptr;
        const PropertyInfo* state = nullptr;
    };
    void cacheProperties();
    bool isHeld() const { return !heldMedia().isEmpty(); }
    void refreshMediaData();
    void handleEntryModified(uint playlist, EntryAddress address);
    void handleSlotModified(MediaAddress address);
    void handleCollectionModified(uint collection);
    void updateEntry();
    void updateSlot();
    PropertyChangeFlags updateMediaProperties();
    void notifyOfChangedMediaProperties(PropertyChangeFlags flags);

    AbstractPlaylistProvider* m_playlistProvider;
    AbstractMediaLibraryProvider* m_libraryProvider;
    Info m_info;
    EntryAddress m_playingEntryAddress;
    std::shared_ptr<const GuiPlaylistEntry> m_playingEntry;
    MediaAddress m_playingSlotAddress;
    std::shared_ptr<const GuiMediaSlot> m_playingSlot;
    double m_inpoint = 0;
    std::optional<double> m_outpoint;
    double m_duration = 0;
};

} // namespace vantrel
