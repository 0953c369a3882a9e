#include "common/outputs/outputcanvas.h"

#include "common/ui/style/colors.h"
#include "common/ui/style/smoothpicture.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/uncovered.h"

#include <QPainter>

#include <algorithm>

namespace vantrel {

using colors::getColor;

QRectF outputPart(const QSizeF& picture, const QSizeF& output)
{
    QRectF part(QPointF(), output.scaled(picture, Qt::KeepAspectRatio));
    part.moveCenter(QRectF(QPointF(), picture).center());
    return part;
}

OutputCanvas::OutputCanvas(QWidget* parent)
    : ZTFrame(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    // As large as the picture may become: another mode of either output changes the scale of both.
    keepUncovered(this, [this] {
        QRectF largest(QPointF(), outputSize() * fittingScale());
        largest.moveCenter(QRectF(rect()).center());
        return largest.toAlignedRect();
    });
}

void OutputCanvas::setOutputSize(const QSize& size)
{
    if (size == m_size)
        return;
    m_size = size;
    update();
    Q_EMIT fittingScaleChanged();
}

QSizeF OutputCanvas::outputSize() const
{
    return m_size.isEmpty() ? QSizeF(1920, 1080) : QSizeF(m_size);
}

void OutputCanvas::setPixelScale(double scale)
{
    if (qFuzzyCompare(scale, m_scale))
        return;
    m_scale = scale;
    update();
}

double OutputCanvas::fittingScale() const
{
    const QSizeF output = outputSize();
    return std::max(0.001, std::min((width() - 2) / output.width(), (height() - 2) / output.height()));
}

void OutputCanvas::setFrameColor(const QColor& color)
{
    m_frame = color;
    update();
}

void OutputCanvas::setBackground(const QColor& color)
{
    m_background = color;
    update();
}

void OutputCanvas::setPicture(const QPixmap& picture)
{
    m_picture = picture;
    update();
}

void OutputCanvas::setNotice(const QString& text)
{
    if (text == m_notice)
        return;
    m_notice = text;
    setAccessibleDescription(text);
    update();
}

void OutputCanvas::setPlacement(const std::optional<ScalingGeometry>& placement)
{
    m_placement = placement;
    update();
}

void OutputCanvas::setProposal(const std::optional<ScalingGeometry>& proposal)
{
    m_proposal = proposal;
    update();
}

QSize OutputCanvas::sizeHint() const
{
    return {400, 225};
}

QSize OutputCanvas::minimumSizeHint() const
{
    return {96, 54};
}

void OutputCanvas::resizeEvent(QResizeEvent* event)
{
    ZTFrame::resizeEvent(event);
    Q_EMIT fittingScaleChanged();
}

QRectF OutputCanvas::screenRect() const
{
    QRectF screen(QPointF(), outputSize() * m_scale);
    screen.moveCenter(QRectF(rect()).center());
    return screen;
}

QRectF OutputCanvas::onScreen(const QRectF& inOutput) const
{
    return {screenRect().topLeft() + inOutput.topLeft() * m_scale, inOutput.size() * m_scale};
}

void OutputCanvas::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRectF screen = screenRect();
    if (m_picture.isNull())
        painter.fillRect(screen, m_background);
    else
        drawSmoothly(painter, screen, m_picture, outputPart(m_picture.size(), outputSize()));
    if (!isEnabled() || !m_notice.isEmpty())
        painter.fillRect(screen, getColor(colors::Zt_black_50));
    painter.setRenderHint(QPainter::Antialiasing);
    // On a dark line, so that it can be seen on media of any colour.
    const auto outline = [&painter, this](const QRectF& rect, colors::ColorCode color) {
        const QRectF line = onScreen(rect).adjusted(0.5, 0.5, -0.5, -0.5);
        painter.setPen(QPen(getColor(colors::Zt_black_50), 3));
        painter.drawRect(line);
        painter.setPen(QPen(getColor(color), 1, Qt::DashLine));
        painter.drawRect(line);
    };
    if (m_placement && m_placement->isCut())
        outline(m_placement->picture(), colors::Zt_white_50);
    painter.setPen(QPen(m_frame, 2));
    painter.drawRect(screen);
    if (m_proposal) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(getColor(colors::Zt_orange_20));
        painter.drawRect(onScreen(m_proposal->picture()) & screen);
        painter.setBrush(Qt::NoBrush);
        outline(m_proposal->picture(), colors::Zt_orange);
    }
    paintNotice(painter);
}

void OutputCanvas::paintNotice(QPainter& painter) const
{
    if (m_notice.isEmpty())
        return;
    painter.setPen(getColor(colors::White));
    painter.drawText(screenRect().adjusted(spacing::normal, 0, -spacing::normal, 0),
                     Qt::AlignCenter | Qt::TextWordWrap, m_notice);
}

} // namespace vantrel
