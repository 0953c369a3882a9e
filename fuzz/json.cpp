// Any text: it is refused with a reason and a place, or it becomes a sound value that says the same when it
// is written and read again.
#include "tarn/json/jsontree.h"

#include <cstdlib>

using namespace vantrel;

namespace {

void check(bool good)
{
    if (!good)
        std::abort();
}

void checkTrees(const Json& json)
{
    check(JsonTree::fault(json).empty());
    json.forEachMember([](std::string_view, const Json& value) { checkTrees(value); });
    json.forEachItem(checkTrees);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::string error;
    Json json;
    if (!Json::parseString(text, json, &error)) {
        check(!error.empty() && json.isNull());
        json = Json(text); // as a string it is repaired, and then it can be written
    }
    checkTrees(json);
    for (const bool pretty : {false, true}) {
        Json again;
        const std::string written = json.toString(pretty);
        check(Json::parseString(written, again, &error));
        check(again == json && again.toString(pretty) == written);
    }
    return 0;
}
