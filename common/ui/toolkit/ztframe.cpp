#include "common/ui/toolkit/ztframe.h"

namespace vantrel {

ZTFrame::ZTFrame(QWidget* parent)
    : QFrame(parent)
{
    setAttribute(Qt::WA_StyledBackground);
}

void ZTFrame::setObjectNames(const QString& base)
{
    setObjectName(base);
}

} // namespace vantrel
