#pragma once

#include "tarn/media/mediaaddress.h"

#include <QHashFunctions>

namespace vantrel {

inline std::size_t qHash(const MediaAddress& address, std::size_t seed = 0) noexcept
{
    return qHashMulti(seed, address.collection, address.slot);
}

} // namespace vantrel
