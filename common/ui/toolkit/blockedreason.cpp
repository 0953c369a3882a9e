#include "common/ui/toolkit/blockedreason.h"

#include <QToolTip>
#include <QVariant>
#include <QWidget>

namespace vantrel {

namespace {
constexpr auto ownTip = "ownTip"; // kept here while a reason stands in its place
}

void setBlockedReason(QWidget* widget, const QString& reason)
{
    const QString before = widget->toolTip();
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
    if (QToolTip::isVisible() && QToolTip::text() == before && widget->toolTip() != before)
        QToolTip::hideText(); // what it says is no longer true
}

} // namespace vantrel
