#include "common/ui/toolkit/blockedreason.h"

#include <QVariant>
#include <QWidget>

namespace vantrel {

namespace {
constexpr auto ownTip = "ownTip"; // kept here while a reason stands in its place
}

void setBlockedReason(QWidget* widget, const QString& reason)
{
    const QVariant kept = widget->property(ownTip);
    if (reason.isEmpty()) {
        if (kept.isValid())
            widget->setToolTip(kept.toString());
        widget->setProperty(ownTip, {});
    } else {
        if (!kept.isValid())
            widget->setProperty(ownTip, widget->toolTip());
        widget->setToolTip(reason);
    }
}

} // namespace vantrel
