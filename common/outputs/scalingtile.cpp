#include "common/outputs/scalingtile.h"

#include "common/session/settings/configuration.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/smoothpicture.h"
#include "common/ui/style/spacing.h"

#include <QEvent>
#include <QFocusEvent>
#include <QPainter>

namespace vantrel {

using colors::getColor;

ScalingTile::ScalingTile(const ScalingMode& mode, QWidget* parent)
    : QAbstractButton(parent)
    , m_mode(mode)
{
    setCheckable(true);
    setText(mode.shortLabel);
    setAccessibleName(mode.label);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    followFontSize(this, [this](FontSize) { updateGeometry(); });
}

void ScalingTile::setMedium(const QSizeF& media, const QSizeF& output, const QColor& background)
{
    m_output = output;
    m_background = background;
    m_geometry = ScalingGeometry(m_mode.value, media, output);
    const QString what = m_geometry.description();
    setToolTip(what.isEmpty() ? m_mode.label : m_mode.label + QStringLiteral(": ") + what);
    setAccessibleDescription(what);
    update();
}

void ScalingTile::setPicture(const QPixmap& picture)
{
    m_picture = picture;
    update();
}

void ScalingTile::setLabelled(bool labelled)
{
    m_labelled = labelled;
    updateGeometry();
    update();
}

int ScalingTile::labelledWidth() const
{
    return fontMetrics().horizontalAdvance(text()) + 2 * spacing::tight;
}

int ScalingTile::labelHeight() const
{
    return m_labelled ? fontMetrics().height() + spacing::tight : 0;
}

QSize ScalingTile::sizeHint() const
{
    return {m_labelled ? labelledWidth() : minimumSizeHint().width(), minimumSizeHint().height()};
}

QSize ScalingTile::minimumSizeHint() const
{
    return {scaled(24, currentFontSize()),
            scaled(m_labelled ? 40 : 28, currentFontSize()) + labelHeight() + 2 * spacing::tight};
}

QRectF ScalingTile::screenRect() const
{
    const QRectF room = QRectF(rect()).adjusted(spacing::tight, spacing::tight, -spacing::tight,
                                                -spacing::tight - labelHeight());
    QRectF screen(QPointF(), m_output.scaled(room.size(), Qt::KeepAspectRatio));
    screen.moveCenter(room.center());
    return screen;
}

bool ScalingTile::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::FocusIn: {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        setProperty("keyboardfocus", reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason);
        Q_EMIT lookedAt(true);
        break;
    }
    case QEvent::HoverEnter:
        Q_EMIT lookedAt(true);
        break;
    case QEvent::FocusOut:
        setProperty("keyboardfocus", false);
        [[fallthrough]];
    case QEvent::HoverLeave:
    case QEvent::Hide:
        Q_EMIT lookedAt(false);
        break;
    default:
        break;
    }
    return QAbstractButton::event(event);
}

void ScalingTile::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (underMouse() && isEnabled()) {
        painter.setBrush(getColor(isDown() ? colors::Zt_white_4 : colors::Zt_white_8));
        painter.drawRoundedRect(rect(), spacing::tight, spacing::tight);
    }
    const QRectF screen = screenRect();
    const double scale = screen.width() / m_output.width();
    const QRectF& inOutput = m_geometry.picture();
    const QRectF picture(screen.topLeft() + inOutput.topLeft() * scale, inOutput.size() * scale);
    painter.setOpacity(isEnabled() ? 1.0 : 0.4);
    painter.fillRect(screen, m_background);
    painter.save();
    painter.setClipRect(screen);
    if (!m_picture.isNull() && !inOutput.isEmpty())
        drawSmoothly(painter, picture, m_picture);
    else
        painter.fillRect(picture, getColor(colors::Slate_grey_400));
    painter.restore();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(
        QPen(getColor(isChecked() ? colors::Zt_orange : colors::Zt_white_30), isChecked() ? 2 : 1));
    painter.drawRect(screen);
    if (m_labelled) {
        painter.setPen(getColor(isChecked() ? colors::White : colors::Zt_white_70));
        const QRect label(0, height() - labelHeight(), width(), labelHeight());
        painter.drawText(label, Qt::AlignHCenter | Qt::AlignTop, text());
    }
    if (property("keyboardfocus").toBool()) {
        painter.setPen(QPen(getColor(colors::Zt_blue_lighter), 1));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), spacing::tight,
                                spacing::tight);
    }
}

} // namespace vantrel
