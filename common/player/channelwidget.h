#pragma once

#include "common/playback/columnstep.h"

#include <QTimer>
#include <QWidget>

class QSplitter;

namespace vantrel {

class Object;
class PlaybackWidget;
class PlaylistWidget;
class Scene;
class Session;
class TakeControls;
class ZTSplitter;

/// A channel of the server: preview on the left, program on the right, the take between them. Made by the
/// mapper of PlayerPlaybackView for each channel of the scene; main thread.
class ChannelWidget : public QWidget
{
    Q_OBJECT

public:
    /// session: must outlive this.
    explicit ChannelWidget(Session* session, QWidget* parent = nullptr);

    /// The channel object, with its children "preview" and "program"; null when the widget waits for one.
    void setObject(Object* object, Scene* scene);
    /// Why nothing can be sent to the server; empty when it can.
    void setBlocked(const QString& reason);
    /// Without a server nothing takes a click but the playlists, which can still be read, saved and printed.
    void setUsable(bool usable);
    /// Gives both columns the same division, about three quarters for the playback.
    void adjustSplitters();
    /// The least width of both columns, where the window has room for it.
    void setTextSize(FontSize size);

    QSize minimumSizeHint() const override;

    PlaybackWidget* previewWidget() const { return m_preview; }
    PlaybackWidget* programWidget() const { return m_program; }
    PlaylistWidget* previewPlaylist() const { return m_previewPlaylist; }
    TakeControls* takeControls() const { return m_takeControls; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void followPictures();
    void updateStep();
    void updateWords();
    QString shareKey(const QSplitter* splitter) const;
    bool divideAsKept();

    // In the order in which Tab goes through them.
    ZTSplitter* m_previewSplitter;
    PlaybackWidget* m_preview;
    PlaylistWidget* m_previewPlaylist;
    TakeControls* m_takeControls;
    ZTSplitter* m_programSplitter;
    PlaybackWidget* m_program;
    PlaylistWidget* m_programPlaylist;
    ColumnStep m_step = ColumnStep::Wide;
    QTimer m_adjust;
    FontSize m_size = FontSize::Medium;
    bool m_isSized = false; // by its parent, before which its width says nothing
    bool m_isAdjusting = false;
};

} // namespace vantrel
