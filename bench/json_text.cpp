// Reading, writing and holding a library, against nlohmann::json.
#include "bench/json_library.h"

#include <optional>

using namespace vantrel;
using namespace vantrel::bench;

int main()
{
    constexpr const char* peer = "nlohmann::json";
    for (const LibraryShape& shape : libraryShapes()) {
        const std::string text = LibraryText(shape).make();
        const int runs = shape.slots > 10000 ? 5 : 15;
        const double megabytes = static_cast<double>(text.size()) / 1e6;

        double start = heapBytes();
        std::optional<Json> ours(std::in_place);
        if (!Json::parseString(text, *ours))
            return 1;
        const double ourBytes = heapBytes() - start;
        start = heapBytes();
        std::optional<nlohmann::json> theirs(nlohmann::json::parse(text));
        const double theirBytes = heapBytes() - start;
        if (ours->size() != theirs->size() || nlohmann::json::parse(ours->toString()) != *theirs)
            return 1;

        std::size_t written = 0;
        const double ourWriting = bestOf(runs, [&] { written += ours->toString().size(); });
        const double theirWriting = bestOf(runs, [&] { written += theirs->dump().size(); });
        ours.reset();
        theirs.reset();
        const double ourReading = bestOf(runs, [&] {
            Json json;
            written += Json::parseString(text, json);
        });
        const double theirReading = bestOf(runs, [&] { written += nlohmann::json::parse(text).size(); });
        if (written == 0)
            return 1;
        report("json/parse/" + shape.suffix(), peer, megabytes / ourReading, megabytes / theirReading, "MB/s",
               theirReading / ourReading, 4);
        report("json/serialise/" + shape.suffix(), peer, megabytes / ourWriting, megabytes / theirWriting,
               "MB/s", theirWriting / ourWriting, 3);
        report("json/heap/" + shape.suffix(), peer, ourBytes, theirBytes, "bytes", theirBytes / ourBytes,
               2.5);
    }
    return 0;
}
