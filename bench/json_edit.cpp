// What an edit command pays: a private copy of the library, one slot changed, both patches. The peer does
// what one would do with plain values: serialise, copy, edit, serialise, diff twice.
#include "bench/json_library.h"
#include "tarn/json/patch.h"

#include <map>

using namespace vantrel;
using namespace vantrel::bench;

namespace {

void rename(Json& library, const LibraryShape& shape, int slot, int version)
{
    Json* slots = library.edit("collections")->edit(std::to_string(shape.collectionOf(slot)))->edit("slots");
    Json* place = slots->edit(std::to_string(shape.placeOf(slot)));
    place->set("name", "Renamed for version " + std::to_string(version));
}

double ourEdit(const Json& library, const LibraryShape& shape)
{
    constexpr int edits = 5000;
    std::size_t operations = 0;
    const double seconds = bestOf(3, [&] {
        std::mt19937 random(7);
        for (int i = 0; i < edits; ++i) {
            const Json before = library;
            Json copy = library;
            rename(copy, shape, static_cast<int>(random() % static_cast<unsigned>(shape.slots)), i);
            const Json after = copy;
            Patch redo;
            Patch undo;
            Patch::diff(before, after, redo, undo);
            operations += redo.size() + undo.size();
        }
    });
    if (operations != 3 * 2 * edits)
        std::fprintf(stderr, "unexpected patches\n");
    return seconds / edits;
}

double theirEdit(const nlohmann::json& library, const LibraryShape& shape)
{
    std::size_t operations = 0;
    const int slot = shape.slots / 2;
    const double seconds = bestOf(shape.slots > 10000 ? 1 : 3, [&] {
        const nlohmann::json before = library;
        nlohmann::json copy = library;
        auto& slots = copy["collections"][std::to_string(shape.collectionOf(slot))]["slots"];
        slots[std::to_string(shape.placeOf(slot))]["name"] = "Renamed for version 0";
        const nlohmann::json after = copy;
        operations = nlohmann::json::diff(before, after).size() + nlohmann::json::diff(after, before).size();
    });
    if (operations != 2)
        std::fprintf(stderr, "unexpected patches\n");
    return seconds;
}

/// Bytes kept for each of 1,000 versions of which each changes one slot.
double historyBytes(const Json& library, const LibraryShape& shape)
{
    constexpr int versions = 1000;
    std::vector<Json> history;
    history.reserve(versions + 1);
    history.push_back(library);
    std::mt19937 random(11);
    const double before = heapBytes();
    for (int i = 0; i < versions; ++i) {
        Json next = history.back();
        rename(next, shape, static_cast<int>(random() % static_cast<unsigned>(shape.slots)), i);
        history.push_back(std::move(next));
    }
    return (heapBytes() - before) / versions;
}

} // namespace

int main()
{
    std::map<int, double> small; // cost at 1,000 slots, by slots a collection
    for (const LibraryShape& shape : libraryShapes()) {
        const std::string text = LibraryText(shape).make();
        Json ours;
        if (!Json::parseString(text, ours))
            return 1;
        const nlohmann::json theirs = nlohmann::json::parse(text);
        const double cost = ourEdit(ours, shape);
        const double theirCost = theirEdit(theirs, shape);
        report("json/edit-diff/" + shape.suffix(), "nlohmann::json", cost * 1e6, theirCost * 1e6, "us",
               theirCost / cost, shape.slots == 100000 ? 10000 : 100);
        if (shape.slots == 1000)
            small[shape.perCollection] = cost;
        if (shape.slots == 100000)
            report("json/edit-diff-growth/" + shape.suffix(),
                   "1,000 slots, of which 5 times the cost is allowed", cost * 1e6,
                   small[shape.perCollection] * 5e6, "us", small[shape.perCollection] * 5 / cost, 1);
        const double bytes = historyBytes(ours, shape);
        report("json/history/" + shape.suffix(), "8 KB a version", bytes, 8192, "bytes", 8192 / bytes, 1);
    }
    return 0;
}
