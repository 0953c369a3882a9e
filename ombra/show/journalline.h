#pragma once

#include "tarn/json/json.h"

#include <string>
#include <string_view>

namespace vantrel::ombra {

/// One line of the journal: the CRC-32 of the JSON as eight hexadecimal digits, a blank, compact JSON, a line
/// feed.
std::string encodeJournalLine(const Json& entry);
/// Reads a line without its line feed; false when it is torn or damaged.
bool decodeJournalLine(std::string_view line, Json& out);

} // namespace vantrel::ombra
