// Datagrams of discovery: whatever comes is an answer or none, and what was read of one is read again from
// what it is written as.
#include "tarn/discovery/searchtext.h"

#include <cstdint>
#include <cstdlib>

using namespace vantrel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view datagram(reinterpret_cast<const char*>(data), size);
    const auto attributes = discovery::parseAnswer(datagram);
    discovery::isQuestion(datagram);
    if (!attributes)
        return 0;
    const std::string again = discovery::answerText(*attributes);
    if (!again.empty() && discovery::parseAnswer(again) != attributes)
        std::abort();
    return 0;
}
