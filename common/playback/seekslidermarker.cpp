#include "common/playback/seekslidermarker.h"

#include "common/playback/seeksliderhandle.h"
#include "common/ui/style/colors.h"

#include <QPainter>
#include <QSvgRenderer>

namespace vantrel {

namespace {

constexpr double bracketHeight = 16.0; // units of the 24 that the drawing has

} // namespace

SeekSliderMarker::SeekSliderMarker(const QString& icon, double fraction, QWidget* parent)
    : QWidget(parent)
    , m_icon(icon)
    , m_color(colors::getColor(colors::Green_green))
    , m_fraction(fraction)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

int SeekSliderMarker::markerOffset() const
{
    return static_cast<int>(width() * m_fraction);
}

void SeekSliderMarker::setColor(const QColor& color)
{
    m_color = color;
    render();
    update();
}

QRect SeekSliderMarker::sweetSpot() const
{
    QRect spot(0, 0, height(), height());
    spot.moveCenter(geometry().center());
    return spot.translated(m_sweetSpotOffset, 0);
}

void SeekSliderMarker::render()
{
    if (size().isEmpty())
        return;
    const qreal ratio = devicePixelRatioF();
    m_pixmap = QPixmap(size() * ratio);
    m_pixmap.setDevicePixelRatio(ratio);
    m_pixmap.fill(Qt::transparent);
    QPainter painter(&m_pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    // The bracket of the drawing alone, as high as the slider: its stem stands in the column of the mark's
    // time.
    QSvgRenderer renderer(m_icon);
    const double side = height() * 24.0 / bracketHeight;
    const double stem = (m_fraction < 0.5 ? 8.0 : 16.0) / 24.0 * side;
    renderer.render(&painter, QRectF(markerOffset() + 0.5 - stem, (height() - side) / 2.0, side, side));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(rect(), hasFocus() ? colors::getColor(colors::Blue_button_focus) : m_color);
}

void SeekSliderMarker::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1.0 : disabledOpacity);
    painter.drawPixmap(0, 0, m_pixmap);
}

void SeekSliderMarker::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    render();
}

void SeekSliderMarker::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    setColor(m_color);
}

void SeekSliderMarker::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    setColor(m_color);
}

} // namespace vantrel
