#include "common/outputs/scalingmodes.h"

#include <QCoreApplication>

namespace vantrel {

const QList<ScalingMode>& scalingModes()
{
    const auto mode = [](const char* value, const char* label, const char* shortLabel, const char* icon) {
        return ScalingMode{QLatin1String(value), QCoreApplication::translate("ScalingMode", label),
                           QCoreApplication::translate("ScalingMode", shortLabel), QLatin1String(icon)};
    };
    static const QList<ScalingMode> modes{
        mode("fit", "Fit media", "Fit", ":/icons/scale-fit.svg"),
        mode("stretch", "Stretch to screen", "Stretch", ":/icons/scale-stretch.svg"),
        mode("clip", "Clip to screen", "Clip", ":/icons/scale-clip.svg"),
        mode("centered", "1:1 Centered", "Centered", ":/icons/scale-centered.svg"),
        mode("topLeft", "1:1 Top left", "Top left", ":/icons/scale-topleft.svg"),
        mode("topRight", "1:1 Top right", "Top right", ":/icons/scale-topright.svg"),
        mode("bottomLeft", "1:1 Bottom left", "Bottom left", ":/icons/scale-bottomleft.svg"),
        mode("bottomRight", "1:1 Bottom right", "Bottom right", ":/icons/scale-bottomright.svg"),
    };
    return modes;
}

QString scalingLabel(const QString& value)
{
    for (const ScalingMode& mode : scalingModes()) {
        if (mode.value == value)
            return mode.label;
    }
    return value;
}

} // namespace vantrel
