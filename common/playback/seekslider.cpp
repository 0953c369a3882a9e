#include "common/playback/seekslider.h"

#include "common/playback/accessibletimeline.h"
#include "common/playback/seeksliderhandle.h"
#include "common/playback/seekslidermarker.h"
#include "common/ui/style/colors.h"

#include <QMap>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

struct Scale
{
    int height, markerWidth, handleWidth, groove, fill, transition; // pixels
};

const QMap<FontSize, Scale> scales{{FontSize::Small, {21, 7, 3, 2, 4, 6}},
                                   {FontSize::Medium, {27, 9, 5, 2, 4, 6}},
                                   {FontSize::Large, {41, 15, 7, 4, 6, 8}},
                                   {FontSize::Huge, {53, 19, 9, 4, 8, 10}}};

/// The bounds may cross for a moment, while the server's values come in one by one; the upper one then wins.
double limited(double value, double low, double high)
{
    return std::isfinite(value) ? std::min(std::max(value, low), high) : low;
}

} // namespace

SeekSlider::SeekSlider(QWidget* parent)
    : QWidget(parent)
    , m_handle(new SeekSliderHandle(this))
    , m_inMarker(new SeekSliderMarker(QStringLiteral(":/icons/mc_set_inpoint.svg"), 0.4, this))
    , m_outMarker(new SeekSliderMarker(QStringLiteral(":/icons/mc_set_outpoint.svg"), 0.6, this))
    , m_markerColor(colors::getColor(colors::Green_green))
{
    AccessibleTimeline::install();
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setToolTip(tr("Drag to seek. Arrow keys move what has the focus: 0.1 s, with Shift 1 s, with Alt 10 s."));
    setAccessibleName(tr("Timeline"));
    m_inMarker->setAccessibleName(tr("In point"));
    m_outMarker->setAccessibleName(tr("Out point"));
    m_inMarker->stackUnder(m_handle);
    m_outMarker->stackUnder(m_handle);
    QWidget::setTabOrder(m_inMarker, m_handle);
    QWidget::setTabOrder(m_handle, m_outMarker);
    setMarkerColor(m_markerColor);
    setInpointOutpointEnabled(true);
    if (const Configuration* settings = configuration())
        connect(settings, &Configuration::optionChanged, this, &SeekSlider::onStyleChange);
    setScale(currentFontSize());
}

void SeekSlider::setSeekBarEnabled(bool enabled)
{
    m_handle->setEnabled(enabled);
}

void SeekSlider::setEnabled(bool enabled)
{
    if (!enabled)
        endGestures();
    m_enabled = enabled;
    m_handle->setVisible(enabled);
    if (!enabled)
        unsetCursor(); // no move of the mouse will bring that about
    update();
}

void SeekSlider::setInpointOutpointHidden(bool hidden)
{
    m_inMarker->setVisible(!hidden);
    m_outMarker->setVisible(!hidden);
    update();
}

void SeekSlider::setInpointOutpointEnabled(bool enabled)
{
    m_inpointOutpointEnabled = enabled;
    for (SeekSliderMarker* marker : {m_inMarker, m_outMarker})
        marker->setFocusPolicy(enabled ? Qt::StrongFocus : Qt::NoFocus);
    update();
}

void SeekSlider::setDrawGrooveFill(bool draw)
{
    m_drawGrooveFill = draw;
    update();
}

void SeekSlider::setPlayheadFixed(bool fixed)
{
    if (fixed && m_draggingPlayhead)
        endRide();
    m_playheadFixed = fixed;
    movePlayhead();
}

void SeekSlider::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_inMarker->setObjectName(base + QStringLiteral("-inMarker"));
    m_outMarker->setObjectName(base + QStringLiteral("-outMarker"));
    m_handle->setObjectName(base + QStringLiteral("-playhead"));
}

int SeekSlider::lastPixel() const
{
    return width() - 1 - rightMargin;
}

int SeekSlider::timecodeToPixelPos(double seconds) const
{
    if (!(m_duration > 0.0) || !std::isfinite(seconds))
        return leftMargin;
    const double share = std::clamp(seconds / m_duration, -1.0, 2.0);
    return static_cast<int>((width() - 1 - leftMargin - rightMargin) * share + leftMargin);
}

double SeekSlider::pixelPosToTimecode(int x) const
{
    const int usable = width() - 1 - leftMargin - rightMargin;
    if (x < leftMargin || usable <= 0)
        return 0.0;
    if (x > lastPixel())
        return m_duration;
    return m_duration * (x - leftMargin) / usable;
}

QSize SeekSlider::sizeHint() const
{
    return {200, height()};
}

QSize SeekSlider::minimumSizeHint() const
{
    return {60, height()};
}

void SeekSlider::setInpoint(double seconds)
{
    if (!m_draggingIn)
        setInpointInternal(seconds);
}

void SeekSlider::setOutpoint(double seconds)
{
    if (!m_draggingOut)
        setOutpointInternal(seconds);
}

void SeekSlider::setInpointInternal(double seconds)
{
    m_inpoint = limited(seconds, 0.0, m_outpoint);
    placeMarkers();
}

void SeekSlider::setOutpointInternal(double seconds)
{
    m_outpoint = limited(seconds, m_inpoint, m_duration);
    placeMarkers();
}

void SeekSlider::placeMarkers()
{
    m_inPixel = timecodeToPixelPos(m_inpoint);
    m_outPixel = timecodeToPixelPos(m_outpoint);
    m_inMarker->move(m_inPixel - m_inMarker->markerOffset(), 0);
    m_outMarker->move(m_outPixel - m_outMarker->markerOffset(), 0);
    if (!m_draggingIn && !m_draggingOut)
        updateMarkerSweetSpots();
    update();
}

void SeekSlider::setPosition(double seconds)
{
    if (m_playheadFixed)
        return;
    if (m_draggingPlayhead)
        m_serverPosition = seconds;
    else
        setPositionInternal(seconds);
}

void SeekSlider::setPositionInternal(double seconds)
{
    m_position = limited(seconds, m_inpoint, m_outpoint);
    m_serverPosition = m_position;
    m_playheadPixel = timecodeToPixelPos(m_position);
    movePlayhead();
}

void SeekSlider::movePlayhead()
{
    const int center = m_playheadFixed ? lastPixel() : m_playheadPixel;
    m_handle->move(center - m_handle->width() / 2, 0);
}

void SeekSlider::setDuration(double seconds)
{
    m_duration = seconds > 0.0 && std::isfinite(seconds) ? seconds : 0.0;
}

void SeekSlider::setMarkerColor(const QColor& color)
{
    m_markerColor = color;
    m_inMarker->setColor(color);
    m_outMarker->setColor(color);
    update();
}

void SeekSlider::setInTransition(double seconds)
{
    if (seconds < 0.0)
        return;
    m_inTransition = std::min(seconds, m_duration);
    update();
}

void SeekSlider::setOutTransition(double seconds)
{
    if (seconds < 0.0)
        return;
    m_outTransition = std::min(seconds, m_duration);
    update();
}

void SeekSlider::handleInpointChange()
{
    Q_EMIT inpointSet(m_inpoint);
}

void SeekSlider::handleOutpointChange()
{
    Q_EMIT outpointSet(m_outpoint);
}

void SeekSlider::handleInpointSetting()
{
    setInpointInternal(std::max(m_inpoint, m_position));
    Q_EMIT inpointSet(m_inpoint);
}

void SeekSlider::handleOutpointSetting()
{
    setOutpointInternal(std::min(m_outpoint, m_position));
    Q_EMIT outpointSet(m_outpoint);
}

void SeekSlider::onStyleChange(ConfigurationOption option, const QVariant& value)
{
    if (option == TEXT_SIZE)
        setScale(fontSizeFrom(value));
}

void SeekSlider::setScale(FontSize size)
{
    const Scale scale = scales.value(size);
    setFixedHeight(scale.height);
    m_inMarker->resize(scale.markerWidth, scale.height);
    m_outMarker->resize(scale.markerWidth, scale.height);
    m_handle->resize(scale.handleWidth, scale.height);
    m_grooveHeight = scale.groove;
    m_fillHeight = scale.fill;
    m_transitionHeight = scale.transition;
    placeMarkers();
    movePlayhead();
}

void SeekSlider::updateMarkerSweetSpots()
{
    const int spot = m_inMarker->sweetSpot().width();
    int inOffset = 0;
    int outOffset = 0;
    if (m_inPixel == leftMargin && m_outPixel == leftMargin) {
        inOffset = -spot;
    } else if (m_inPixel == lastPixel() && m_outPixel == lastPixel()) {
        outOffset = spot;
    } else if (m_outPixel - m_inPixel < spot) {
        inOffset = -spot / 2;
        outOffset = spot / 2;
    }
    m_inMarker->setSweetSpotOffset(inOffset);
    m_outMarker->setSweetSpotOffset(outOffset);
}

} // namespace vantrel
