#pragma once

#include <QSlider>

namespace vantrel {

/// The volume of a channel beside its meter, for columns with room: a groove in decibels and its value in
/// words. It shows and moves the value of the fader in the popup, which alone knows the scene. Owned by
/// PlaybackWidgetFooter; main thread.
class VolumeFader : public QSlider
{
    Q_OBJECT

public:
    explicit VolumeFader(QWidget* parent = nullptr);

    /// "-6 dB", or "Mute" at the lowest value.
    QString valueText() const;
    /// Where the groove ends and the room for the value begins, in pixels from the left.
    int grooveEnd() const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    int textWidth() const;
    int valueToX(int value) const;
    int xToValue(int x) const;
    void describe();
};

} // namespace vantrel
