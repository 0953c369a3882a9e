#pragma once

#include <QColor>
#include <QPixmap>
#include <QWidget>

namespace vantrel {

/// The in or out mark of a SeekSlider: a tinted drawing of which one pixel column stands at the mark's time.
/// The slider moves it and handles its mouse.
class SeekSliderMarker : public QWidget
{
    Q_OBJECT

public:
    /// fraction: where across its width the mark points, 0 to 1.
    SeekSliderMarker(const QString& icon, double fraction, QWidget* parent);

    int markerOffset() const;
    void setColor(const QColor& color);
    QColor color() const { return m_color; }
    void setSweetSpotOffset(int pixels) { m_sweetSpotOffset = pixels; }
    /// Where the mouse takes hold of it, in the slider's coordinates.
    QRect sweetSpot() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void render();

    const QString m_icon;
    QPixmap m_pixmap;
    QColor m_color;
    int m_sweetSpotOffset = 0;
    const double m_fraction;
};

} // namespace vantrel
