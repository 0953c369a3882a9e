#include "common/ui/toolkit/colorbox.h"

#include "common/session/settings/configuration.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"

#include <QColorDialog>
#include <QFocusEvent>
#include <QPainter>
#include <QPainterPath>

namespace vantrel {

using colors::getColor;

namespace {

constexpr double radius = 4; // pixels
constexpr int chequer = 6;

} // namespace

ColorBox::ColorBox(QWidget* parent)
    : ColorBox(Qt::black, parent)
{
}

ColorBox::ColorBox(const QColor& color, QWidget* parent)
    : QAbstractButton(parent)
    , m_color(color)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(tr("Colour"));
    followFontSize(this, [this](FontSize) { updateGeometry(); });
    connect(this, &QAbstractButton::clicked, this, &ColorBox::openChooser);
}

void ColorBox::setColor(const QColor& color)
{
    if (!color.isValid() || color == m_color)
        return;
    m_color = color;
    update();
    Q_EMIT colorChanged(m_color);
}

void ColorBox::setObjectNames(const QString& base)
{
    setObjectName(base);
}

QSize ColorBox::sizeHint() const
{
    return {scaled(48, currentFontSize()), scaled(28, currentFontSize())};
}

void ColorBox::openChooser()
{
    auto* chooser = new QColorDialog(m_color, window());
    chooser->setAttribute(Qt::WA_DeleteOnClose);
    chooser->setOption(QColorDialog::DontUseNativeDialog);
    chooser->setOption(QColorDialog::ShowAlphaChannel, !m_opaque);
    connect(chooser, &QColorDialog::colorSelected, this, [this](const QColor& color) {
        if (color == m_color)
            return;
        setColor(color);
        Q_EMIT colorEdited(m_color);
    });
    chooser->open();
}

QColor ColorBox::borderColor() const
{
    if (property("keyboardfocus").toBool())
        return getColor(colors::Zt_blue_lighter);
    if (!isEnabled())
        return getColor(colors::Zt_white_8);
    if (isDown())
        return getColor(colors::Zt_orange);
    return getColor(underMouse() ? colors::Zt_white_70 : colors::Zt_white_50);
}

void ColorBox::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.setClipPath(shape);
    if (m_color.alpha() < 255) {
        painter.fillRect(rect(), Qt::white);
        for (int y = 0; y < height(); y += chequer) {
            for (int x = (y / chequer % 2) * chequer; x < width(); x += 2 * chequer)
                painter.fillRect(x, y, chequer, chequer, Qt::lightGray);
        }
    }
    painter.setOpacity(isEnabled() ? 1.0 : 0.4);
    painter.fillRect(rect(), m_color);
    painter.setOpacity(1.0);
    painter.setClipping(false);
    painter.setPen(QPen(borderColor(), 1));
    painter.drawPath(shape);
}

void ColorBox::focusInEvent(QFocusEvent* event)
{
    setProperty("keyboardfocus",
                event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason);
    QAbstractButton::focusInEvent(event);
    update();
}

void ColorBox::focusOutEvent(QFocusEvent* event)
{
    setProperty("keyboardfocus", false);
    QAbstractButton::focusOutEvent(event);
    update();
}

} // namespace vantrel
