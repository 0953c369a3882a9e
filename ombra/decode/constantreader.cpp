#include "ombra/decode/constantreader.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

bool ConstantReader::seek(double time, Picture& out)
{
    const double last = std::isinf(m_duration) ? 1e9 : std::max(0.0, std::ceil(m_duration * rate) - 1);
    m_index = static_cast<long long>(std::clamp(std::floor((time + tolerance) * rate), 0.0, last));
    out = {m_image, static_cast<double>(m_index) / rate, 1 / rate};
    return true;
}

bool ConstantReader::next(Picture& out)
{
    const double time = static_cast<double>(m_index + 1) / rate;
    if (time >= m_duration)
        return false;
    ++m_index;
    out = {m_image, time, 1 / rate};
    return true;
}

} // namespace vantrel::ombra
