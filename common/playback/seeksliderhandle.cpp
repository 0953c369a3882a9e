#include "common/playback/seeksliderhandle.h"

#include "common/ui/style/colors.h"

#include <QPainter>

namespace vantrel {

SeekSliderHandle::SeekSliderHandle(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    // The slider decides by sweet spots, which reach beyond the bar itself.
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Playhead"));
}

QRect SeekSliderHandle::sweetSpot() const
{
    QRect spot(0, 0, height(), height());
    spot.moveCenter(geometry().center());
    return spot;
}

void SeekSliderHandle::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    // Opaque also while disabled: there is nothing below it to shine through.
    painter.fillRect(rect(), palette().color(QPalette::Window));
    painter.setOpacity(isEnabled() ? 1.0 : disabledOpacity);
    painter.fillRect(rect(),
                     colors::getColor(hasFocus() ? colors::Blue_button_focus : colors::Slate_grey_50));
}

void SeekSliderHandle::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
}

void SeekSliderHandle::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    update();
}

} // namespace vantrel
