#pragma once

#include "common/outputs/scalinggeometry.h"
#include "common/outputs/scalingmodes.h"

#include <QAbstractButton>
#include <QColor>
#include <QPixmap>

namespace vantrel {

/// What one scaling does to the medium of an output, in small; pressed, it is chosen. Owned by its
/// OutputPicture; main thread.
class ScalingTile : public QAbstractButton
{
    Q_OBJECT

public:
    explicit ScalingTile(const ScalingMode& mode, QWidget* parent = nullptr);

    const QString& scaling() const { return m_mode.value; }
    /// media, output: in pixels; picture: the whole medium, null where there is none.
    void setMedium(const QSizeF& media, const QSizeF& output, const QColor& background);
    void setPicture(const QPixmap& picture);
    const ScalingGeometry& geometryOfMedium() const { return m_geometry; }

    /// Without its name it is as narrow as it has to be; the tooltip has the name.
    void setLabelled(bool labelled);
    /// The width at which the name is whole, in pixels.
    int labelledWidth() const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The mouse or the keyboard is on it, or has left it.
    void lookedAt(bool looked);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF screenRect() const;
    int labelHeight() const;

    const ScalingMode m_mode;
    QSizeF m_output{1920, 1080};
    ScalingGeometry m_geometry{QString(), {}, {}};
    QColor m_background = Qt::black;
    QPixmap m_picture;
    bool m_labelled = true;
};

} // namespace vantrel
