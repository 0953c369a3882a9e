// A document, a line break, a patch: the patch does all or nothing, and the difference that it made leads
// there and back.
#include "tarn/json/patch.h"

#include "tarn/json/jsontree.h"

#include <algorithm>
#include <cstdlib>

using namespace vantrel;

namespace {

void check(bool good)
{
    if (!good)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::size_t split = std::min(text.find('\n'), size);
    Json before;
    Patch patch;
    if (!Json::parseString(text.substr(0, split), before))
        return 0;
    if (!Patch::parseString(text.substr(std::min(split + 1, size)), patch)) {
        check(patch.empty());
        return 0;
    }
    const std::string beforeText = before.toString();
    Json after = before;
    const PatchResult result = patch.apply(after);
    check(before.toString() == beforeText);
    check(result.message.empty() == bool(result));
    if (!result) {
        check(after.sameNode(before));
        return 0;
    }
    check(JsonTree::fault(after).empty());
    Patch redo;
    Patch undo;
    Patch::diff(before, after, redo, undo);
    Patch sent;
    check(Patch::fromJson(redo.toJson(), sent));
    Json document = before;
    check(sent.apply(document) && document == after);
    check(undo.apply(document) && document == before);
    return 0;
}
