#pragma once

#include "tarn/media/entryaddress.h"

#include <QHashFunctions>

namespace vantrel {

inline std::size_t qHash(const EntryAddress& address, std::size_t seed = 0) noexcept
{
    return qHashMulti(seed, address.major, address.minor);
}

} // namespace vantrel
