#include "common/playback/volumecontrolpopup.h"

#include "common/playback/volumeslider.h"
#include "common/ui/style/colors.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QMap>
#include <QPainter>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int margin = 8; // pixels
constexpr int sliderWidth = 26;
constexpr int tickGap = 6;
constexpr int heightBesideSlider = 21;

const QMap<FontSize, int> sliderHeights{
    {FontSize::Small, 250}, {FontSize::Medium, 315}, {FontSize::Large, 380}, {FontSize::Huge, 445}};

} // namespace

VolumeControlPopup::VolumeControlPopup(QWidget* parent)
    : ZTFrame(parent)
    , m_tickColumn(new QWidget(this))
    , m_slider(new VolumeSlider(this))
{
    setWindowFlags(Qt::Popup | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_TranslucentBackground);
    m_slider->indicator()->setObjectName(QStringLiteral("VolumeIndicator"));
    m_ticks = m_slider->createTicks(m_tickColumn);
    connect(m_slider, &QSlider::valueChanged, this, &VolumeControlPopup::onSliderMoved);
    if (const Configuration* settings = configuration())
        connect(settings, &Configuration::optionChanged, this, &VolumeControlPopup::onStyleChange);
    setSize(currentFontSize());
}

void VolumeControlPopup::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_slider->setObjectName(base + QStringLiteral("-Slider"));
}

void VolumeControlPopup::setVolume(double volume)
{
    if (volume == m_volume)
        return;
    m_volume = volume;
    {
        // The exact amplitude stays; the fader only shows its nearest decibel.
        const QSignalBlocker blocker(m_slider);
        m_slider->setValue(VolumeSlider::toDecibels(volume));
    }
    m_slider->updateIndicator();
    Q_EMIT volumeChanged();
}

void VolumeControlPopup::onSliderMoved(int decibels)
{
    const double volume = VolumeSlider::toAmplitude(decibels);
    if (volume == m_volume)
        return;
    m_volume = volume;
    Q_EMIT volumeChanged();
}

void VolumeControlPopup::setSize(FontSize size)
{
    m_fontSize = size;
    int widest = 0;
    for (ZTLabel* tick : std::as_const(m_ticks)) {
        tick->ensurePolished();
        tick->setMinimumSize(16, 16);
        widest = std::max(widest, tick->sizeHint().width());
    }
    const int columnWidth = widest * 3 / 2;
    const int height = sliderHeights.value(size);
    m_slider->indicator()->ensurePolished();
    const int indicatorWidth =
        m_slider->indicator()->fontMetrics().horizontalAdvance(QStringLiteral("-60 dB ")) + 8;
    setFixedSize(margin + columnWidth + sliderWidth + indicatorWidth + margin, height + heightBesideSlider);
    m_tickColumn->setGeometry(margin, heightBesideSlider / 2, columnWidth, height);
    m_slider->setFixedHeight(height);
    m_slider->setGeometry(margin + columnWidth, heightBesideSlider / 2, sliderWidth, height);
    m_slider->placeTicks(columnWidth - tickGap);
    m_slider->updateIndicator();
}

void VolumeControlPopup::onStyleChange(ConfigurationOption option, const QVariant& value)
{
    if (option == TEXT_SIZE)
        setSize(fontSizeFrom(value));
}

void VolumeControlPopup::showEvent(QShowEvent* event)
{
    ZTFrame::showEvent(event);
    setSize(m_fontSize);
    m_slider->setFocus(Qt::PopupFocusReason);
}

void VolumeControlPopup::changeEvent(QEvent* event)
{
    ZTFrame::changeEvent(event);
    // Disabled, it would keep the mouse to itself and hear no click that closes it.
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        hide();
}

void VolumeControlPopup::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colors::getColor(colors::Slate_grey_500));
    painter.setBrush(colors::getColor(colors::Opaque_frame_2));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
}

} // namespace vantrel
