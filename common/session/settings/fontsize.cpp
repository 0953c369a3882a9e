#include "common/session/settings/fontsize.h"

namespace vantrel {

FontSize fontSizeFrom(const QVariant& value)
{
    bool ok = false;
    const int number = value.toInt(&ok);
    if (!ok || number < static_cast<int>(FontSize::Small) || number > static_cast<int>(FontSize::Huge))
        return FontSize::Medium;
    return static_cast<FontSize>(number);
}

QString toString(FontSize size)
{
    switch (size) {
    case FontSize::Small:
        return QStringLiteral("small");
    case FontSize::Medium:
        return QStringLiteral("medium");
    case FontSize::Large:
        return QStringLiteral("large");
    case FontSize::Huge:
        return QStringLiteral("huge");
    }
    return QStringLiteral("medium");
}

} // namespace vantrel
