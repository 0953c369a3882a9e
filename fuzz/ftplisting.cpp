// Lines of a listing: an entry names something in the listed folder, with a day that exists; what is refused
// leaves nothing behind, and the line's end changes nothing.
#include "tarn/ftp/ftplisting.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace vantrel;

namespace {

constexpr FtpTime now{2026, 3, 1, 12, 0};

void check(const FtpListEntry& entry)
{
    if (entry.name.empty() || entry.name.find_first_of(std::string_view("/\0\r\n", 4)) != std::string::npos ||
        entry.size < 0 || entry.permissions < 0 || entry.permissions > 0777 ||
        (entry.isDirectory && entry.isFile))
        std::abort();
    const FtpTime& t = entry.time;
    if (t.isValid() && (t.month < 1 || t.month > 12 || t.day < 1 || t.day > 31 || t.hour < 0 || t.hour > 23 ||
                        t.minute < 0 || t.minute > 59))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view text(reinterpret_cast<const char*>(data), size);
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        FtpListEntry entry;
        entry.name = "untouched";
        const bool isOne = parseListLine(line, "media", now, entry);
        if (isOne)
            check(entry);
        else if (entry.name != "untouched")
            std::abort();
        FtpListEntry ended;
        if (parseListLine(std::string(line) + "\r\n", "media", now, ended) != isOne ||
            (isOne && ended != entry))
            std::abort();
    }
    return 0;
}
