// EDIDs: what is read of one is within what its bytes can say, and what is refused leaves nothing behind and
// says why. The first byte of the input says whether the checksums are put right, without which few would be
// read.
#include "tarn/edid/edid.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

using namespace vantrel;

namespace {

void check(const Edid& display)
{
    if (display.maker.size() != 3 || display.product.size() > 13 || display.serialText.size() > 13)
        std::abort();
    for (const VideoTiming& mode : display.modes) {
        if (mode.width <= 0 || mode.height <= 0 || mode.dotClock <= 0 || mode.id().empty() ||
            !whyNotShown(display, mode).empty())
            std::abort();
    }
    if (display.preferred.has_value() == display.modes.empty())
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    std::vector<std::uint8_t> bytes(data + 1, data + size);
    for (std::size_t at = 0; data[0] & 1 && at + 128 <= bytes.size(); at += 128) {
        std::uint8_t sum = 0;
        for (std::size_t i = at; i < at + 127; ++i)
            sum = static_cast<std::uint8_t>(sum + bytes[i]);
        bytes[at + 127] = static_cast<std::uint8_t>(-sum);
    }
    Edid display;
    display.maker = "untouched";
    std::string why;
    if (readEdid(bytes, display, &why))
        check(display);
    else if (display.maker != "untouched" || why.empty())
        std::abort();
    return 0;
}
