#pragma once

#include "common/session/settings/configuration.h"

#include <QColor>
#include <QWidget>

namespace vantrel {

class SeekSliderHandle;
class SeekSliderMarker;

/// The timeline of a channel: a groove for the whole media, a playhead, and marks for the in and out point.
/// It knows no server: times (seconds) come in by slots, gestures go out by signals, and while the operator
/// drags, what is dragged obeys the hand alone. Owned by PlaybackWidget; main thread.
class SeekSlider : public QWidget
{
    Q_OBJECT

public:
    explicit SeekSlider(QWidget* parent = nullptr);

    /// The handle alone.
    void setSeekBarEnabled(bool enabled);
    /// Whether there is media; hides the handle when there is none.
    void setEnabled(bool enabled);
    void setInpointOutpointHidden(bool hidden);
    /// Whether the marks can be dragged.
    void setInpointOutpointEnabled(bool enabled);
    /// Shows everything and takes nothing from the hand.
    void setLocked(bool locked);
    /// Whether the playhead, or the marks, can be moved by whatever means.
    bool isMovable() const { return isEnabled() && m_enabled && !m_locked; }
    bool areMarksMovable() const { return isMovable() && m_inpointOutpointEnabled; }
    void setDrawGrooveFill(bool draw);
    /// Pins the playhead to the right end, for media without an end.
    void setPlayheadFixed(bool fixed);
    /// base for this widget, base + "-inMarker", "-outMarker" and "-playhead" for its parts.
    void setObjectNames(const QString& base);

    double inpoint() const { return m_inpoint; }
    double outpoint() const { return m_outpoint; }
    double position() const { return m_position; }
    double duration() const { return m_duration; }

    /// The pixel column of a time and back; the ends beyond the groove give 0 and the duration.
    int timecodeToPixelPos(double seconds) const;
    double pixelPosToTimecode(int x) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public Q_SLOTS:
    void setInpoint(double seconds);
    void setOutpoint(double seconds);
    void setPosition(double seconds);
    /// Without a redraw: the end points that follow bring it.
    void setDuration(double seconds);
    void setMarkerColor(const QColor& color);
    void setInTransition(double seconds);
    void setOutTransition(double seconds);
    /// Tell the present points again.
    void handleInpointChange();
    void handleOutpointChange();
    /// Take the playhead for the point, where that narrows the range.
    void handleInpointSetting();
    void handleOutpointSetting();
    void onStyleChange(vantrel::ConfigurationOption option, const QVariant& value);

Q_SIGNALS:
    void seekPosition(double seconds);
    /// These two come in pairs.
    void seekStarting();
    void seekEnding();
    void inpointSet(double seconds);
    void outpointSet(double seconds);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    static constexpr int leftMargin = 6; // pixels beside the groove
    static constexpr int rightMargin = 5;

    void setInpointInternal(double seconds);
    void setOutpointInternal(double seconds);
    void setPositionInternal(double seconds);
    void placeMarkers();
    void movePlayhead();
    void startRide(double seconds);
    void endRide();
    void dragInpoint(double seconds);
    void dragOutpoint(double seconds);
    void endGestures();
    void updateMarkerSweetSpots();
    void updateCursor(const QPoint& at);
    void setScale(FontSize size);
    QRect bar(int fromPixel, int toPixel, int height) const;
    int lastPixel() const;

    SeekSliderHandle* m_handle;
    SeekSliderMarker* m_inMarker;
    SeekSliderMarker* m_outMarker;
    QColor m_markerColor;
    bool m_draggingIn = false;
    bool m_draggingOut = false;
    bool m_draggingPlayhead = false;
    bool m_enabled = true;
    bool m_locked = false;
    bool m_inpointOutpointEnabled = true;
    bool m_drawGrooveFill = true;
    double m_inpoint = 0.0;
    double m_outpoint = 0.0;
    double m_position = 0.0;
    double m_duration = 0.0;
    double m_inTransition = 0.0;
    double m_outTransition = 0.0;
    double m_serverPosition = 0.0;
    int m_inPixel = 6;
    int m_outPixel = 6;
    int m_playheadPixel = 6;
    int m_grooveHeight = 2;
    int m_fillHeight = 4;
    int m_transitionHeight = 6;
    bool m_playheadFixed = false;
};

} // namespace vantrel
