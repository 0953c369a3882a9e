// An atomic patch of 10,000 operations on a library, against json::patch, which is atomic too.
#include "bench/json_library.h"
#include "tarn/json/patch.h"

using namespace vantrel;
using namespace vantrel::bench;

namespace {

std::string patchText(const LibraryShape& shape, int operations)
{
    std::mt19937 random(3);
    nlohmann::json patch = nlohmann::json::array();
    for (int i = 0; i < operations; ++i) {
        const int slot = static_cast<int>(random() % static_cast<unsigned>(shape.slots));
        const std::string slots = "/collections/" + std::to_string(shape.collectionOf(slot)) + "/slots/";
        const std::string path = slots + std::to_string(shape.placeOf(slot));
        switch (i % 5) {
        case 0:
            patch.push_back(
                {{"op", "add"}, {"path", slots + "new" + std::to_string(i)}, {"value", {{"name", "n"}}}});
            break;
        case 1:
            patch.push_back({{"op", "copy"}, {"from", path}, {"path", slots + "copy" + std::to_string(i)}});
            break;
        default:
            patch.push_back({{"op", "replace"}, {"path", path + "/inpoint"}, {"value", i * 0.125}});
        }
    }
    return patch.dump();
}

} // namespace

int main()
{
    for (const LibraryShape& shape : libraryShapes()) {
        const std::string text = LibraryText(shape).make();
        const std::string patch = patchText(shape, 10000);
        Patch ourPatch;
        if (!Patch::parseString(patch, ourPatch))
            return 1;
        const nlohmann::json theirs = nlohmann::json::parse(text);
        const nlohmann::json theirPatch = nlohmann::json::parse(patch);

        // Each run patches a document that it alone holds, and pays for letting the old one go.
        Json ourResult;
        nlohmann::json theirResult;
        double ourCost = 1e99;
        double theirCost = 1e99;
        for (int run = 0; run < 7; ++run) {
            ourResult = Json();
            if (!Json::parseString(text, ourResult))
                return 1;
            ourCost = std::min(ourCost, bestOf(1, [&] { ourPatch.apply(ourResult); }));
        }
        for (int run = 0; run < (shape.slots > 10000 ? 3 : 5); ++run) {
            theirResult = theirs;
            theirCost = std::min(theirCost, bestOf(1, [&] { theirResult = theirResult.patch(theirPatch); }));
        }
        if (nlohmann::json::parse(ourResult.toString()) != theirResult)
            return 1;
        report("json/patch-10000/" + shape.suffix(), "nlohmann::json", ourCost * 1e3, theirCost * 1e3, "ms",
               theirCost / ourCost, shape.slots == 100000 ? 20 : 1);
    }
    return 0;
}
