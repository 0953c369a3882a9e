#pragma once

#include "ombra/decode/picturereader.h"

namespace vantrel::ombra {

/// The first picture of a file. Null, and the reason, for what has none.
Ref<DecodedPicture> decodeStill(const std::filesystem::path& file, const std::atomic<bool>& stop,
                                std::string* error);

} // namespace vantrel::ombra
