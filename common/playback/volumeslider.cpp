#include "common/playback/volumeslider.h"

#include "common/ui/style/colors.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace vantrel {

namespace {

constexpr int muteDecibels = -60;
constexpr int grooveTop = 8; // pixels between the widget's edges and the ends of the groove
constexpr int grooveBottom = 7;
constexpr int knobHeight = 12;
constexpr std::array<int, 8> tickValues{0, -6, -12, -20, -30, -40, -50, muteDecibels};

} // namespace

VolumeSlider::VolumeSlider(QWidget* parent)
    : QSlider(Qt::Vertical, parent)
    , m_indicator(new ZTLabel(parentWidget()))
{
    setFocusPolicy(Qt::StrongFocus);
    setRange(muteDecibels, 0);
    setSingleStep(1);
    setPageStep(1);
    setAccessibleName(tr("Volume in decibels"));
    setToolTip(tr("Volume: drag, or use the arrow keys"));
    connect(this, &QSlider::valueChanged, this, &VolumeSlider::updateIndicator);
    QSlider::setValue(0);
    updateIndicator();
}

double VolumeSlider::toAmplitude(int decibels)
{
    return decibels <= muteDecibels ? 0.0 : std::pow(10.0, decibels / 20.0);
}

int VolumeSlider::toDecibels(double amplitude)
{
    if (!(amplitude > 0.0))
        return muteDecibels;
    return std::clamp(static_cast<int>(std::lround(20.0 * std::log10(std::min(amplitude, 1.0)))),
                      muteDecibels, 0);
}

void VolumeSlider::setValue(int decibels)
{
    QSlider::setValue(std::clamp(decibels, minimum(), maximum()));
}

QSize VolumeSlider::sizeHint() const
{
    return {26, 250};
}

QList<ZTLabel*> VolumeSlider::createTicks(QWidget* column)
{
    QList<ZTLabel*> labels;
    for (const int value : tickValues) {
        auto* label = new ZTLabel(value == minimum() ? tr("Mute") : QString::number(value), column);
        label->setStyleClass(QStringLiteral("caption"));
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_ticks.append({value, label});
        labels.append(label);
    }
    return labels;
}

void VolumeSlider::placeTicks(int columnWidth)
{
    for (const Tick& tick : std::as_const(m_ticks)) {
        const int height = std::max(tick.label->sizeHint().height(), tick.label->minimumHeight());
        tick.label->setGeometry(0, valueToY(tick.value) - height / 2, columnWidth, height);
    }
}

int VolumeSlider::valueToY(int value) const
{
    const double share = static_cast<double>(value - minimum()) / (maximum() - minimum());
    const int usable = height() - grooveTop - grooveBottom;
    return grooveTop + static_cast<int>(std::lround((1.0 - share) * usable));
}

int VolumeSlider::yToValue(int y) const
{
    const int usable = std::max(height() - grooveTop - grooveBottom, 1);
    const double share = 1.0 - static_cast<double>(y - grooveTop) / usable;
    return minimum() + static_cast<int>(std::lround(share * (maximum() - minimum())));
}

void VolumeSlider::updateIndicator()
{
    m_indicator->setText(value() == minimum() ? tr("Mute") : QString::asprintf("%+d dB", value()));
    m_indicator->adjustSize();
    m_indicator->move(x() + width() + 4, y() + valueToY(value()) - m_indicator->height() / 2);
    update();
}

void VolumeSlider::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int center = width() / 2;
    painter.fillRect(QRect(center - 1, grooveTop, 2, height() - grooveTop - grooveBottom),
                     colors::getColor(colors::Slate_grey_300));
    const int knob = valueToY(value());
    painter.fillRect(QRect(center - 1, knob, 2, height() - grooveBottom - knob),
                     colors::getColor(colors::Zt_orange));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors::getColor(hasFocus() ? colors::Blue_button_focus : colors::Slate_grey_50));
    painter.drawRoundedRect(QRect(center - 10, knob - knobHeight / 2, 20, knobHeight), 3, 3);
}

void VolumeSlider::resizeEvent(QResizeEvent* event)
{
    QSlider::resizeEvent(event);
    updateIndicator();
}

void VolumeSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    setFocus(Qt::MouseFocusReason);
    setValue(yToValue(event->position().toPoint().y()));
}

void VolumeSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() & Qt::LeftButton)
        setValue(yToValue(event->position().toPoint().y()));
}

} // namespace vantrel
