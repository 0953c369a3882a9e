#include "common/playback/volumefader.h"

#include "common/playback/volumeslider.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/spacing.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

constexpr int knobWidth = 10; // pixels
constexpr int groovePixels = 72;
constexpr qreal disabledOpacity = 0.65;

} // namespace

VolumeFader::VolumeFader(QWidget* parent)
    : QSlider(Qt::Horizontal, parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setRange(VolumeSlider::toDecibels(0.0), VolumeSlider::toDecibels(1.0));
    setSingleStep(1);
    setPageStep(6);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(tr("Volume in decibels"));
    connect(this, &QSlider::valueChanged, this, &VolumeFader::describe);
    setValue(maximum());
    describe();
}

QString VolumeFader::valueText() const
{
    return value() == minimum() ? tr("Mute") : tr("%1 dB").arg(value());
}

void VolumeFader::describe()
{
    setToolTip(tr("Volume: %1. Drag, or use the arrow keys.").arg(valueText()));
    setAccessibleDescription(valueText());
    update();
}

int VolumeFader::textWidth() const
{
    return fontMetrics().horizontalAdvance(QStringLiteral("-60 dB"));
}

int VolumeFader::grooveEnd() const
{
    return width() - textWidth() - spacing::normal - knobWidth / 2;
}

int VolumeFader::valueToX(int value) const
{
    const double share = double(value - minimum()) / (maximum() - minimum());
    return knobWidth / 2 + static_cast<int>(std::lround(share * (grooveEnd() - knobWidth / 2)));
}

int VolumeFader::xToValue(int x) const
{
    const double share = double(x - knobWidth / 2) / std::max(1, grooveEnd() - knobWidth / 2);
    return minimum() + static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * (maximum() - minimum())));
}

QSize VolumeFader::sizeHint() const
{
    ensurePolished();
    return {groovePixels + knobWidth + spacing::normal + textWidth(), fontMetrics().height() + 4};
}

QSize VolumeFader::minimumSizeHint() const
{
    return sizeHint();
}

void VolumeFader::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1.0 : disabledOpacity);
    const int middle = height() / 2;
    const int knob = valueToX(value());
    painter.fillRect(QRect(knobWidth / 2, middle - 1, grooveEnd() - knobWidth / 2, 2),
                     colors::getColor(colors::Slate_grey_300));
    painter.fillRect(QRect(knobWidth / 2, middle - 1, knob - knobWidth / 2, 2),
                     colors::getColor(colors::Zt_orange));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors::getColor(hasFocus() ? colors::Zt_blue_lighter : colors::Slate_grey_50));
    painter.drawRoundedRect(QRect(knob - knobWidth / 2, middle - 8, knobWidth, 16), 3, 3);
    painter.setPen(palette().color(isEnabled() ? QPalette::Normal : QPalette::Disabled, foregroundRole()));
    painter.setOpacity(1.0);
    painter.drawText(rect().adjusted(width() - textWidth(), 0, 0, 0), Qt::AlignRight | Qt::AlignVCenter,
                     valueText());
}

void VolumeFader::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    setFocus(Qt::MouseFocusReason);
    setValue(xToValue(event->position().toPoint().x()));
}

void VolumeFader::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() & Qt::LeftButton)
        setValue(xToValue(event->position().toPoint().x()));
}

void VolumeFader::changeEvent(QEvent* event)
{
    QSlider::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        updateGeometry();
}

} // namespace vantrel
