#include "tarn/media/datetime.h"

#include <array>
#include <ctime>

namespace vantrel {

std::string DateTime::toString() const
{
    const auto seconds = static_cast<std::time_t>(m_seconds);
    std::tm parts{};
    std::array<char, 32> text{};
    if (!localtime_r(&seconds, &parts) || parts.tm_year > 9999 - 1900)
        return {};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts)};
}

} // namespace vantrel
