#pragma once

#include <QList>
#include <QSlider>

namespace vantrel {

class ZTLabel;

/// A vertical fader in decibels; its lowest value is silence. The value stands beside the knob. Owned by
/// VolumeControlPopup; main thread.
class VolumeSlider : public QSlider
{
    Q_OBJECT

public:
    explicit VolumeSlider(QWidget* parent = nullptr);

    /// Labels of the scale as children of the column, which is as high as the slider and stands beside it.
    /// The column's owner lays them out with placeTicks.
    QList<ZTLabel*> createTicks(QWidget* column);
    /// Puts the labels at the heights of their values, right-aligned in a column of that width (pixels).
    void placeTicks(int columnWidth);
    /// The y of a value in this widget, in pixels.
    int valueToY(int value) const;
    ZTLabel* indicator() const { return m_indicator; }
    /// Writes and places the indicator anew; the slider does it itself unless its signals are blocked.
    void updateIndicator();

    /// The fader's amplitude 0.0 to 1.0 for a value in decibels, and back.
    static double toAmplitude(int decibels);
    static int toDecibels(double amplitude);

    QSize sizeHint() const override;

public Q_SLOTS:
    /// Limits to the range.
    void setValue(int decibels);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    int yToValue(int y) const;

    ZTLabel* m_indicator;
    struct Tick
    {
        int value;
        ZTLabel* label;
    };
    QList<Tick> m_ticks;
};

} // namespace vantrel
