#include "tarn/json/jsonkeycache.h"

#include "tarn/json/jsontree.h"

#include <array>

namespace vantrel {

namespace {

constexpr std::size_t longestKept = 64;
constexpr std::size_t places = 128;

thread_local bool gone =
    false; // objects of static life may still edit when the cache of their thread is no more

struct Cache
{
    std::array<Json, places> names;
    ~Cache() { gone = true; }
};

} // namespace

Json JsonKeyCache::get(std::string_view text)
{
    if (gone || text.size() > longestKept)
        return JsonTree::makeText(text);
    thread_local Cache cache;
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
    std::memcpy(&head, text.data(), sizeof head); // only long texts come here
    std::memcpy(&tail, text.data() + text.size() - sizeof tail, sizeof tail);
    const std::uint64_t hash = (head * 31 + tail + text.size()) * 0x9E3779B97F4A7C15u;
    Json& name = cache.names[hash >> 57];
    if (name.stringView() != text)
        name = JsonTree::makeText(text);
    return name;
}

} // namespace vantrel
