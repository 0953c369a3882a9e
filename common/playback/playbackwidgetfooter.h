#pragma once

#include "common/playback/columnstep.h"
#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/channelenums.h"
#include "tarn/media/playenums.h"

#include <memory>
#include <vector>

namespace vantrel {

class EndActionWidget;
class IconButton;
class LevelMeter;
class VolumeControlPopup;
class ZTLabel;

/// The volume, the level and the end action of a channel. Owned by PlaybackWidget; main thread.
class PlaybackWidgetFooter : public ZTFrame
{
    Q_OBJECT

public:
    explicit PlaybackWidgetFooter(PlaybackViewMode viewMode, QWidget* parent = nullptr);
    ~PlaybackWidgetFooter() override;

    EndActionWidget* endAction() const { return m_endAction; }
    VolumeControlPopup* volumeControlPopup() const { return m_popup; }
    LevelMeter* levelMeter() const { return m_levels; }
    void setColumnStep(ColumnStep step);
    /// Whether the width holds the caption of the end action beside everything that has its place here.
    bool hasRoomForCaption() const;
    /// Shown only where it has room on both channels, so that they look alike.
    void setCaptionAllowed(bool allowed);
    /// base for this widget, base + "-Volume", base + "-Levels" and base + "-EndAction" for its parts.
    void setObjectNames(const QString& base) override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void createReservedButtons();
    void updateCaption();
    void showVolume();

    PlaybackViewMode m_viewMode;
    bool m_captionAllowed = true;
    IconButton* m_volume;
    LevelMeter* m_levels;
    ZTLabel* m_endActionLabel;
    EndActionWidget* m_endAction;
    VolumeControlPopup* m_popup;
    std::vector<std::unique_ptr<IconButton>>
        m_reserved; // laid out nowhere: their widths keep their future places
};

} // namespace vantrel
