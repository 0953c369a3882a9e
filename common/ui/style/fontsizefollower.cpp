#include "common/ui/style/fontsizefollower.h"

#include "common/session/settings/configuration.h"

#include <cmath>

namespace vantrel {

void followFontSize(QObject* context, std::function<void(FontSize)> apply)
{
    apply(currentFontSize());
    if (Configuration* settings = configuration()) {
        QObject::connect(settings, &Configuration::optionChanged, context,
                         [apply = std::move(apply)](ConfigurationOption option, const QVariant& value) {
                             if (option == TEXT_SIZE)
                                 apply(fontSizeFrom(value));
                         });
    }
}

int iconExtent(FontSize size)
{
    return scaled(20, size);
}

int scaled(int pixels, FontSize size)
{
    switch (size) {
    case FontSize::Small:
        return static_cast<int>(std::lround(pixels * 0.85));
    case FontSize::Medium:
        return pixels;
    case FontSize::Large:
        return static_cast<int>(std::lround(pixels * 1.3));
    case FontSize::Huge:
        return static_cast<int>(std::lround(pixels * 1.65));
    }
    return pixels;
}

} // namespace vantrel
