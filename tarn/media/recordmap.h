#pragma once

#include "tarn/json/json.h"
#include "tarn/media/sharedmap.h"

#include <string>
#include <utility>
#include <vector>

namespace vantrel {

/// An ordered map of records with its JSON object kept beside: toJson() writes only the members that were
/// touched since the last call, and hands out the same node as long as nothing was. A record got by edit()
/// may be written through until the next toJson() or copy of the map. Threads: as SharedMap; toJson() counts
/// as an edit.
template <typename Key, typename Record>
class RecordMap
{
public:
    using Map = SharedMap<Key, Record>;
    using const_iterator = typename Map::const_iterator;
    using iterator = const_iterator;
    using value_type = typename Map::value_type;

    RecordMap()
        : m_json(Json::object())
    {
    }
    RecordMap(const RecordMap& other)
        : m_json(other.toJson())
        , m_map(other.m_map)
    {
    } // what is shared is in step
    RecordMap(RecordMap&&) noexcept = default;
    RecordMap& operator=(RecordMap other) noexcept
    {
        std::swap(m_json, other.m_json);
        std::swap(m_map, other.m_map);
        std::swap(m_touched, other.m_touched);
        return *this;
    }
    ~RecordMap() = default;

    std::size_t size() const noexcept { return m_map.size(); }
    bool empty() const noexcept { return m_map.empty(); }
    const_iterator begin() const { return m_map.begin(); }
    const_iterator end() const { return m_map.end(); }
    const_iterator find(const Key& key) const { return m_map.find(key); }
    const_iterator lower_bound(const Key& key) const { return m_map.lower_bound(key); }
    bool contains(const Key& key) const { return m_map.contains(key); }
    const Record* get(const Key& key) const { return m_map.get(key); }
    /// The records alone; copies in O(1).
    const Map& records() const noexcept { return m_map; }

    Record* edit(const Key& key)
    {
        Record* record = m_map.edit(key);
        if (record)
            touch(key);
        return record;
    }
    void set(const Key& key, Record record)
    {
        m_map.set(key, std::move(record));
        touch(key);
    }
    bool erase(const Key& key)
    {
        if (!m_map.erase(key))
            return false;
        touch(key);
        return true;
    }

    const Json& toJson() const
    {
        for (const Key& key : m_touched)
            write(key);
        m_touched.clear();
        return m_json;
    }

    /// Puts another object of the same members under the records, most of which it was read from: the next
    /// toJson() keeps its nodes where a record has the same one.
    void rebaseJson(const Json& json) { m_json = json; }

private:
    static std::string keyText(int key) { return std::to_string(key); }
    template <typename K>
    static std::string keyText(const K& key)
    {
        return key.toString(true);
    }

    void touch(const Key& key)
    {
        if (m_touched.empty() || !(m_touched.back() == key))
            m_touched.push_back(key);
    }
    void write(const Key& key) const
    {
        const std::string text = keyText(key);
        const Record* record = m_map.get(key);
        if (record)
            m_json.set(text, record->toJson());
        else
            m_json.erase(text);
    }

    mutable Json m_json;
    Map m_map;
    mutable std::vector<Key> m_touched;
};

} // namespace vantrel
