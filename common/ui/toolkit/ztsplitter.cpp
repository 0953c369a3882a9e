#include "common/ui/toolkit/ztsplitter.h"

#include <QEvent>

namespace vantrel {

ZTSplitter::ZTSplitter(QWidget* parent)
    : ZTSplitter(Qt::Horizontal, parent)
{
}

ZTSplitter::ZTSplitter(Qt::Orientation orientation, QWidget* parent)
    : QSplitter(orientation, parent)
{
    setHandleWidth(8);
    setChildrenCollapsible(false);
}

void ZTSplitter::setObjectNames(const QString& base)
{
    setObjectName(base);
}

int ZTSplitter::getClosestPixelPosition(int handle, double fraction)
{
    if (handle < 1 || handle >= count())
        return 0;
    const int length = orientation() == Qt::Horizontal ? width() : height();
    return closestLegalPosition(qRound(length * fraction), handle);
}

void ZTSplitter::moveHandle(int handle, int pixels)
{
    if (handle >= 1 && handle < count())
        moveSplitter(pixels, handle);
}

/// The handles show where the mouse is by themselves. The style has the splitter hover for their sake, and
/// all that stands in it would be painted anew when the mouse comes or goes, as it does with each dialog.
bool ZTSplitter::event(QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::HoverEnter || type == QEvent::HoverLeave)
        return true;
    return QSplitter::event(event);
}

} // namespace vantrel
