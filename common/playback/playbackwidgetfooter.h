#pragma once

#include "common/playback/columnstep.h"
#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/channelenums.h"

namespace vantrel {

class EndActionWidget;
class IconButton;
class LevelMeter;
class VolumeControlPopup;
class VolumeFader;
class ZTLabel;

/// The volume, the level and the end action of a channel. Where there is room the volume is a fader beside
/// the meter, else a button opens one. Owned by PlaybackWidget; main thread.
class PlaybackWidgetFooter : public ZTFrame
{
    Q_OBJECT

public:
    explicit PlaybackWidgetFooter(PlaybackViewMode viewMode, QWidget* parent = nullptr);

    EndActionWidget* endAction() const { return m_endAction; }
    VolumeControlPopup* volumeControlPopup() const { return m_popup; }
    LevelMeter* levelMeter() const { return m_levels; }
    void setColumnStep(ColumnStep step);
    /// Whether the width holds the end actions as words beside everything that has its place here.
    bool hasRoomForWords() const;
    /// Words only where both channels have room for them, so that they look alike.
    void setShowsWords(bool shows);
    /// base for this widget, base + "-Volume", base + "-Fader", base + "-Levels" and base + "-EndAction" for
    /// its parts.
    void setObjectNames(const QString& base) override;

private:
    void showVolume();

    IconButton* m_volume;
    ZTLabel* m_speaker;
    VolumeFader* m_fader;
    LevelMeter* m_levels;
    ZTLabel* m_endActionLabel;
    EndActionWidget* m_endAction;
    VolumeControlPopup* m_popup;
};

} // namespace vantrel
