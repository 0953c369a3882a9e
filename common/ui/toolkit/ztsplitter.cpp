#include "common/ui/toolkit/ztsplitter.h"

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

int ZTSplitter::getClosestPixelPosition(int handle, double fraction) const
{
    if (handle < 1 || handle >= count())
        return 0;
    const int length = orientation() == Qt::Horizontal ? width() : height();
    // QSplitter lacks the const; the call only reads.
    return const_cast<ZTSplitter*>(this)->closestLegalPosition(qRound(length * fraction), handle);
}

void ZTSplitter::moveHandle(int handle, int pixels)
{
    if (handle >= 1 && handle < count())
        moveSplitter(pixels, handle);
}

} // namespace vantrel
