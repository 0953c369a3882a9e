// Bytes from the preview stream: the decoder gives whole pictures within its bounds or ends, and what it
// gives can be sent on as it came; levels say the same when they are written again.
#include "tarn/preview/audiolevels.h"
#include "tarn/preview/previewwire.h"

#include <algorithm>
#include <cstdlib>

using namespace vantrel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::size_t piece = data[0] + std::size_t{1};
    previewwire::Decoder decoder;
    for (std::size_t at = 1; at < size;) {
        const auto space = decoder.space();
        if (space.empty())
            std::abort(); // it would wait for ever
        const std::size_t count = std::min({piece, space.size(), size - at});
        std::copy_n(data + at, count, space.data());
        at += count;
        const auto result = decoder.commit(count);
        if (result == previewwire::Decoder::Result::Error)
            return decoder.message().empty() ? (std::abort(), 0) : 0;
        if (result == previewwire::Decoder::Result::NeedMore)
            continue;
        const PreviewFrame frame = decoder.take();
        const std::string again = previewwire::encode(frame);
        if (again.empty() || again.size() > at - 1 ||
            !std::equal(again.begin(), again.end(), data + at - again.size(),
                        [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; }))
            std::abort();
        const auto levels = AudioLevels::fromSurface(frame.frame.getSurface());
        if (levels && AudioLevels::fromSurface(levels->toSurface().get()) != levels)
            std::abort();
    }
    return 0;
}
