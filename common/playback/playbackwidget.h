#pragma once

#include "common/playback/columnstep.h"
#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/channelenums.h"

#include <QModelIndex>
#include <QPointer>
#include <QUrl>

#include <memory>

namespace vantrel {

class ChannelHint;
class DefaultResourceStatusProvider;
class DurationEditWidget;
class EndpointTimecodes;
class GUIPlayback;
class GuiMediaItem;
class IconButton;
class MediaDataAggregator;
class MediaMetadata;
class MuteButton;
class Object;
class Path;
class PictureNotice;
class PlaybackControls;
class PlaybackModel;
class PlaybackPreview;
class PlaybackTimecodes;
class PlaybackWidgetFooter;
class PlaybackWidgetHeader;
class PropertiesMapper;
class Scene;
class SeekSlider;
class Session;
class VolumeBinding;

/// One channel as the operator handles it: picture, timeline, transport, volume and end action. It holds no
/// state of its own; the truth is the channel's scene object, seen through its model. Owned by ChannelWidget;
/// main thread.
class PlaybackWidget : public ZTFrame
{
    Q_OBJECT
    Q_PROPERTY(bool isResourceConstrained READ isResourceConstrained WRITE setIsResourceConstrained NOTIFY
                   isResourceConstrainedChanged)

public:
    /// session: whose channel this is; must outlive this.
    PlaybackWidget(PlaybackViewMode viewMode, Session* session, QWidget* parent = nullptr);
    ~PlaybackWidget() override;

    /// Binds the widgets to a playback object of the scene.
    void setObject(Object* object, Scene* scene);
    /// The address (brume URL) of what plays.
    QString mediaAddress() const { return m_mediaAddress; }
    /// Whether it exists in the library.
    bool hasValidMedia() const { return m_hasValidMedia; }
    void setHasValidMedia(bool valid);
    /// Followed on preview alone.
    bool isResourceConstrained() const { return m_isResourceConstrained; }
    void setIsResourceConstrained(bool constrained);
    void resetEndPoints();
    /// Null while nothing plays or the metadata has not come yet.
    std::shared_ptr<MediaMetadata> getMediaMetadata() const;
    /// The brume URL of the slot behind what plays; empty when there is none.
    QUrl getPlayedSlotUrl() const;

    /// Why nothing can be sent to the server; empty when it can.
    void setBlocked(const QString& reason);
    /// Holds the timeline and the transport, so that no stray click moves what is on air. Program is locked
    /// at each connection, preview never.
    void setLocked(bool locked);
    bool isLocked() const { return m_isLocked; }
    /// Why what is on the channel cannot be played; empty when it can.
    QString unplayableReason() const { return m_unplayable; }

    void setColumnStep(ColumnStep step);
    /// The height, in pixels, that holds a picture so high and all around it at the present text size.
    int heightForPicture(int pictureHeight) const;
    /// The height of the whole picture in a column of this width.
    int pictureHeight() const;

    PlaybackWidgetFooter* footer() const { return m_footer; }
    PlaybackPreview* preview() const { return m_preview; }
    PlaybackControls* controls() const { return m_controls; }
    SeekSlider* slider() const { return m_slider; }
    /// Null on preview, both.
    MuteButton* muteButton() const;
    IconButton* lockButton() const;

public Q_SLOTS:
    /// Takes the library's mark off the slot that was on this channel.
    void clearMediaState();
    void onPlaybackDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                               const QList<int>& roles);
    /// Seconds.
    void handleInpointSet(double seconds);
    void handleOutpointSet(double seconds);
    void handlePlaylistReset();
    void handleDragAndDrop(std::shared_ptr<vantrel::GuiMediaItem> item);
    void handleMediaChanged();
    void handleMetadataChanged(QUrl url, std::shared_ptr<vantrel::MediaMetadata> metadata);
    /// What is enabled and shown for the kind of media that plays.
    void refreshPlaybackControls();
    void handleDurationChanged();

Q_SIGNALS:
    /// The number of the playlist that plays, -1 when none does.
    void mediaAddressPlaylist(int playlistNumber);
    void dropObjectReceived(std::shared_ptr<vantrel::GuiMediaItem> item);
    void isResourceConstrainedChanged();
    /// unplayableReason() is another one.
    void unplayableChanged();
    void stillImageDurationChanged(double durationSeconds, bool isInfinite);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    bool isPreview() const { return m_viewMode == Preview; }
    void createChildren();
    void layOut();
    void lineUp();
    void nameChildren();
    void connectChildren();
    void connectSources();
    void tellConstraint();
    void connectMute(const Path& objectPath);
    void updateMediaAddress();
    void updateTransport();
    void updateNotice();
    void setUnread(bool isUnread);
    void showMarkers();
    bool isSoundOnly(const MediaMetadata* metadata) const;
    bool findMediaName(QString& name) const;
    double modelSeconds(int column) const;
    void showPosition(double seconds);
    void showPositionAnew();
    void applyCell(int column, const QVariant& value);
    void playDroppedItem(const GuiMediaItem& item);

    Session* m_session;
    PlaybackModel* m_model;
    QPointer<GUIPlayback> m_playback;
    PlaybackViewMode m_viewMode;
    ColumnStep m_step = ColumnStep::Wide;
    PlaybackWidgetHeader* m_header = nullptr;
    PlaybackPreview* m_preview = nullptr;
    ChannelHint* m_hint = nullptr;
    PictureNotice* m_notice = nullptr;
    PlaybackTimecodes* m_timecodes = nullptr;
    EndpointTimecodes* m_endpoints = nullptr;
    SeekSlider* m_slider = nullptr;
    PlaybackControls* m_controls = nullptr;
    PlaybackWidgetFooter* m_footer = nullptr;
    DurationEditWidget* m_durationEdit = nullptr;
    VolumeBinding* m_volume = nullptr;
    PropertiesMapper* m_propertiesMapper;
    QString m_mediaAddress;
    bool m_hasValidMedia = false;
    bool m_isResourceConstrained = false;
    bool m_isUnread = false;     // the library, so that nobody knows the points
    bool m_hasTransport = false; // there is something to play or to stop
    bool m_isLocked = false;
    QString m_blocked;
    QString m_unplayable;
    DefaultResourceStatusProvider* m_resourceStatusProvider = nullptr;
};

} // namespace vantrel
