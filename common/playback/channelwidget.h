#pragma once

#include "common/session/fontsize.h"

#include <QWidget>

namespace vantrel {

class Object;
class PlaybackWidget;
class Scene;
class TakeControls;
class ZTSplitter;

/// A channel of the server: preview on the left, program on the right, the take between them. Made by the
/// mapper of PlayerPlaybackView for each channel of the scene; main thread.
class ChannelWidget : public QWidget
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit ChannelWidget(QWidget* parent = nullptr);

    /// The channel object, with its children "preview" and "program".
    void setObject(Object* object, Scene* scene);
    /// Gives both columns the same division, about three quarters for the playback.
    void adjustSplitters();
    void setTextSize(FontSize size);

    PlaybackWidget* previewWidget() const { return m_preview; }
    PlaybackWidget* programWidget() const { return m_program; }
    TakeControls* takeControls() const { return m_takeControls; }

private:
    ZTSplitter* m_previewSplitter;
    ZTSplitter* m_programSplitter;
    PlaybackWidget* m_preview;
    PlaybackWidget* m_program;
    TakeControls* m_takeControls;
};

} // namespace vantrel
