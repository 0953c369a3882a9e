#include "common/ui/style/scaledstyle.h"

#include "common/session/settings/configuration.h"
#include "common/ui/style/fontsizefollower.h"

#include <QStyleFactory>

namespace vantrel {

ScaledStyle::ScaledStyle()
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion")))
{
}

int ScaledStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    switch (metric) {
    case PM_SmallIconSize:
    case PM_LineEditIconSize:
    case PM_ButtonIconSize:
        return iconExtent(currentFontSize());
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

} // namespace vantrel
