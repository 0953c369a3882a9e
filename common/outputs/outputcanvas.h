#pragma once

#include "common/outputs/scalinggeometry.h"
#include "common/ui/toolkit/ztframe.h"

#include <QColor>
#include <QPixmap>

#include <optional>

namespace vantrel {

/// The picture of an output, drawn at a scale that it shares with others: what it carries, the parts of the
/// medium that it cuts off, and what another scaling would do. Owned by its OutputPicture; main thread.
class OutputCanvas : public ZTFrame
{
    Q_OBJECT

public:
    explicit OutputCanvas(QWidget* parent = nullptr);

    /// Of the output's mode, in its pixels; an empty one is shown in a usual shape.
    void setOutputSize(const QSize& size);
    /// What its drawing takes room by, in pixels of the output.
    QSizeF outputSize() const;
    /// Pixels of this widget to one of the output.
    void setPixelScale(double scale);
    /// The largest scale at which the output has room here.
    double fittingScale() const;
    void setFrameColor(const QColor& color);
    void setBackground(const QColor& color);
    /// The newest picture of the output, in which it is fitted; null for none.
    void setPicture(const QPixmap& picture);
    /// Said over the picture; empty for nothing.
    void setNotice(const QString& text);
    /// Where the medium stands.
    void setPlacement(const std::optional<ScalingGeometry>& placement);
    /// Where it would stand.
    void setProposal(const std::optional<ScalingGeometry>& proposal);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void fittingScaleChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QRectF screenRect() const;
    QRectF onScreen(const QRectF& inOutput) const;
    void paintNotice(QPainter& painter) const;

    QSize m_size;
    double m_scale = 0.1;
    QColor m_frame;
    QColor m_background = Qt::black;
    QPixmap m_picture;
    QString m_notice;
    std::optional<ScalingGeometry> m_placement;
    std::optional<ScalingGeometry> m_proposal;
};

/// The part of a server's picture that an output of this size takes, which is fitted into it.
QRectF outputPart(const QSizeF& picture, const QSizeF& output);

} // namespace vantrel
