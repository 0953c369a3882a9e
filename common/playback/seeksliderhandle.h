#pragma once

#include <QWidget>

namespace vantrel {

/// How the parts of a seek slider are drawn while it is disabled, as icons are.
inline constexpr double disabledOpacity = 0.6;

/// The playhead of a SeekSlider: a bar that can hold the focus. The slider moves it and handles its mouse.
class SeekSliderHandle : public QWidget
{
    Q_OBJECT

public:
    explicit SeekSliderHandle(QWidget* parent);

    /// Where the mouse takes hold of it, in the slider's coordinates.
    QRect sweetSpot() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};

} // namespace vantrel
