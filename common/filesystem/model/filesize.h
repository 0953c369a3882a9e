#pragma once

#include <QString>

namespace vantrel {

/// As everything that speaks of a size to operators writes it: "19.4 MB", in powers of a thousand.
QString fileSizeText(qint64 bytes);

} // namespace vantrel
