// The operator's side of SeekSlider: mouse, keyboard, cursor and painting.
#include "common/playback/seekslider.h"
#include "common/playback/seeksliderhandle.h"
#include "common/playback/seekslidermarker.h"
#include "common/ui/style/colors.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr int settleMs = 200;

double stepOf(const QKeyEvent* event)
{
    double step = 0.1;
    if (event->modifiers() & Qt::ShiftModifier)
        step = 1.0;
    if (event->modifiers() & Qt::AltModifier)
        step = 10.0;
    return event->key() == Qt::Key_Left ? -step : step;
}

} // namespace

void SeekSlider::setLocked(bool locked)
{
    m_locked = locked;
    if (locked)
        endGestures();
    updateCursor({-1, -1});
}

void SeekSlider::mousePressEvent(QMouseEvent* event)
{
    if (!m_enabled || m_locked)
        return;
    const QPoint at = event->position().toPoint();
    const bool areMarkersUsable = m_inpointOutpointEnabled;
    if (areMarkersUsable && !m_inMarker->isHidden() && m_inMarker->sweetSpot().contains(at)) {
        m_handle->stackUnder(m_inMarker);
        m_draggingIn = true;
        m_inMarker->setFocus(Qt::MouseFocusReason);
    } else if (areMarkersUsable && !m_outMarker->isHidden() && m_outMarker->sweetSpot().contains(at)) {
        m_handle->stackUnder(m_outMarker);
        m_draggingOut = true;
        m_outMarker->setFocus(Qt::MouseFocusReason);
    } else if (m_outPixel - m_inPixel >= m_inMarker->sweetSpot().width()) {
        const double seconds = std::max(pixelPosToTimecode(at.x()), m_inpoint);
        if (!m_draggingPlayhead && !m_playheadFixed) {
            Q_EMIT seekStarting();
            Q_EMIT seekPosition(seconds);
            m_draggingPlayhead = true;
        }
        m_handle->setFocus(Qt::OtherFocusReason);
        setPositionInternal(seconds);
    }
    updateCursor(at);
}

void SeekSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_enabled)
        return;
    const QPoint at = event->position().toPoint();
    updateCursor(at);
    const double seconds = pixelPosToTimecode(at.x());
    if (m_draggingPlayhead && !m_playheadFixed && seconds != m_position) {
        setPositionInternal(seconds);
        Q_EMIT seekPosition(m_position);
    }
    if (m_draggingIn)
        dragInpoint(seconds);
    if (m_draggingOut)
        dragOutpoint(seconds);
}

void SeekSlider::dragInpoint(double seconds)
{
    const double before = m_position;
    setInpointInternal(seconds);
    const bool pushesPlayhead = m_inpoint >= before && !m_playheadFixed;
    if (pushesPlayhead && !m_draggingPlayhead)
        startRide(m_inpoint);
    else if (!pushesPlayhead && m_draggingPlayhead)
        endRide();
}

void SeekSlider::dragOutpoint(double seconds)
{
    const double before = m_position;
    setOutpointInternal(seconds);
    const bool pushesPlayhead = before >= m_outpoint && !m_playheadFixed;
    if (pushesPlayhead && !m_draggingPlayhead)
        startRide(m_outpoint);
    else if (!pushesPlayhead && m_draggingPlayhead)
        endRide();
}

void SeekSlider::startRide(double seconds)
{
    Q_EMIT seekStarting();
    m_draggingPlayhead = true;
    setPositionInternal(seconds);
    Q_EMIT seekPosition(m_position);
}

void SeekSlider::endRide()
{
    m_draggingPlayhead = false;
    Q_EMIT seekEnding();
    setPositionInternal(m_serverPosition);
}

void SeekSlider::mouseReleaseEvent(QMouseEvent* event)
{
    endGestures();
    updateCursor(event->position().toPoint());
}

void SeekSlider::endGestures()
{
    if (std::exchange(m_draggingIn, false))
        Q_EMIT inpointSet(m_inpoint);
    if (std::exchange(m_draggingOut, false))
        Q_EMIT outpointSet(m_outpoint);
    if (m_draggingPlayhead)
        endRide();
    m_inMarker->stackUnder(m_handle);
    m_outMarker->stackUnder(m_handle);
    updateMarkerSweetSpots();
}

void SeekSlider::keyPressEvent(QKeyEvent* event)
{
    if (!m_enabled || m_locked || (event->key() != Qt::Key_Left && event->key() != Qt::Key_Right)) {
        QWidget::keyPressEvent(event);
        return;
    }
    const double step = stepOf(event);
    if (m_handle->hasFocus() && !m_playheadFixed) {
        if (m_draggingPlayhead)
            m_serverPosition = m_position + step;
        else
            setPositionInternal(m_position + step);
        Q_EMIT seekPosition(m_position);
    } else if (m_inMarker->hasFocus() && !m_draggingIn) {
        setInpointInternal(m_inpoint + step);
        Q_EMIT inpointSet(m_inpoint);
        updateMarkerSweetSpots();
    } else if (m_outMarker->hasFocus() && !m_draggingOut) {
        setOutpointInternal(m_outpoint + step);
        Q_EMIT outpointSet(m_outpoint);
        updateMarkerSweetSpots();
    }
}

void SeekSlider::updateCursor(const QPoint& at)
{
    const auto isOver = [&at](const SeekSliderMarker* marker) {
        return !marker->isHidden() && marker->sweetSpot().contains(at);
    };
    if (m_draggingIn || m_draggingOut || m_draggingPlayhead)
        setCursor(Qt::ClosedHandCursor);
    else if (m_locked)
        setCursor(Qt::ForbiddenCursor);
    else if (!m_enabled)
        unsetCursor();
    else if (m_handle->sweetSpot().contains(at) ||
             (m_inpointOutpointEnabled && (isOver(m_inMarker) || isOver(m_outMarker))))
        setCursor(Qt::OpenHandCursor);
    else
        setCursor(Qt::PointingHandCursor);
}

QRect SeekSlider::bar(int fromPixel, int toPixel, int height) const
{
    return {fromPixel, (this->height() - height) / 2, std::max(toPixel - fromPixel, 0), height};
}

void SeekSlider::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    // A lane of the darkest grey: program's red cannot be told well from the panel's.
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors::getColor(colors::Slate_grey_900));
    painter.drawRoundedRect(rect(), 3, 3);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setOpacity(isEnabled() ? 1.0 : disabledOpacity);
    painter.fillRect(bar(leftMargin, lastPixel() + 1, m_grooveHeight),
                     colors::getColor(colors::Slate_grey_300));
    const bool areMarkersHidden = m_inMarker->isHidden() && m_outMarker->isHidden();
    if (m_enabled && m_drawGrooveFill) {
        const int end = areMarkersHidden ? lastPixel() + 1 : m_outPixel;
        painter.fillRect(bar(m_inPixel, end, m_fillHeight), m_markerColor);
    }
    if (!m_inpointOutpointEnabled)
        return;
    const QColor overlay = colors::getColor(colors::Orange_light);
    if (m_inTransition > 0.0) {
        const int end = timecodeToPixelPos(m_inpoint + m_inTransition);
        painter.fillRect(bar(m_inPixel, end, m_transitionHeight), overlay);
    }
    if (m_outTransition > 0.0) {
        const int start = timecodeToPixelPos(m_outpoint - m_outTransition);
        painter.fillRect(bar(start, m_outPixel, m_transitionHeight), overlay);
    }
}

void SeekSlider::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    placeMarkers();
    m_playheadPixel = timecodeToPixelPos(m_position);
    movePlayhead();
}

void SeekSlider::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    updateMarkerSweetSpots();
    QTimer::singleShot(settleMs, this, [this] {
        if (!m_draggingPlayhead)
            setPositionInternal(m_position);
    });
}

void SeekSlider::hideEvent(QHideEvent* event)
{
    endGestures(); // no release will come any more
    QWidget::hideEvent(event);
}

void SeekSlider::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        endGestures(); // the same
}

} // namespace vantrel
