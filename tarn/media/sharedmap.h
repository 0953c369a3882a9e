#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <iterator>
#include <type_traits>
#include <utility>
#include <vector>

namespace vantrel {

/// A shared value that detaches on edit. Copies may be handed to other threads; one CowPtr belongs to one
/// thread.
template <typename T>
class CowPtr
{
public:
    CowPtr()
        : m_node(new Node)
    {
    }
    explicit CowPtr(T value)
        : m_node(new Node{.value = std::move(value)})
    {
    }
    CowPtr(const CowPtr& other) noexcept
        : m_node(other.m_node)
    {
        if (m_node)
            m_node->refs.fetch_add(1, std::memory_order_relaxed);
    }
    CowPtr(CowPtr&& other) noexcept
        : m_node(std::exchange(other.m_node, nullptr))
    {
    }
    CowPtr& operator=(CowPtr other) noexcept
    {
        std::swap(m_node, other.m_node);
        return *this;
    }
    ~CowPtr()
    {
        if (m_node && m_node->refs.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete m_node;
    }

    const T& operator*() const noexcept { return m_node->value; }
    const T* operator->() const noexcept { return &m_node->value; }
    const T* address() const noexcept { return &m_node->value; }

    /// The value for writing: copied first where somebody else holds it too.
    T& edit()
    {
        if (m_node->refs.load(std::memory_order_acquire) != 1)
            *this = CowPtr(T(m_node->value));
        return m_node->value;
    }

private:
    struct Node
    {
        std::atomic<int> refs{1};
        T value{};
    };
    Node* m_node;
};

/// An ordered map that copies in O(1) and shares all but what was edited: sorted chunks of up to maxChunk
/// items below one root. Walks as a std::map does, in key order, over pairs of key and value. Pointers and
/// iterators are good until the next edit of the same map; a pointer from edit() until the map is copied.
template <typename Key, typename Value>
class SharedMap
{
public:
    using Item = std::pair<Key, Value>;
    static constexpr std::size_t maxChunk = 64;

private:
    using Items = std::vector<Item>;
    struct Chunk
    {
        Key first{}; // of the items, so that a search need not open every chunk on its way
        CowPtr<Items> items;
    };
    using Chunks = std::vector<Chunk>;

public:
    class const_iterator
    {
    public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = Item;
        using difference_type = std::ptrdiff_t;
        using pointer = const Item*;
        using reference = const Item&;

        const_iterator() = default;
        reference operator*() const { return (*(*m_chunks)[m_chunk].items)[m_item]; }
        pointer operator->() const { return &**this; }
        const_iterator& operator++()
        {
            if (++m_item == (*m_chunks)[m_chunk].items->size()) {
                ++m_chunk;
                m_item = 0;
            }
            return *this;
        }
        const_iterator& operator--()
        {
            if (m_item == 0)
                m_item = (*m_chunks)[--m_chunk].items->size();
            --m_item;
            return *this;
        }
        const_iterator operator++(int)
        {
            const_iterator old = *this;
            ++*this;
            return old;
        }
        const_iterator operator--(int)
        {
            const_iterator old = *this;
            --*this;
            return old;
        }
        friend bool operator==(const const_iterator& a, const const_iterator& b)
        {
            return a.m_chunk == b.m_chunk && a.m_item == b.m_item;
        }

    private:
        friend class SharedMap;
        const_iterator(const Chunks* chunks, std::size_t chunk, std::size_t item)
            : m_chunks(chunks)
            , m_chunk(chunk)
            , m_item(item)
        {
        }
        const Chunks* m_chunks = nullptr;
        std::size_t m_chunk = 0;
        std::size_t m_item = 0;
    };
    using iterator = const_iterator;
    using value_type = Item;

    std::size_t size() const noexcept { return m_size; }
    bool empty() const noexcept { return m_size == 0; }
    const_iterator begin() const { return {m_chunks.address(), 0, 0}; }
    const_iterator end() const { return {m_chunks.address(), m_chunks->size(), 0}; }

    /// The first item whose key is not before the given one.
    const_iterator lower_bound(const Key& key) const
    {
        if (empty())
            return end();
        const std::size_t chunk = chunkFor(key);
        const Items& items = *(*m_chunks)[chunk].items;
        const std::size_t item = itemFor(items, key);
        if (item == items.size())
            return {m_chunks.address(), chunk + 1, 0};
        return {m_chunks.address(), chunk, item};
    }
    const_iterator find(const Key& key) const
    {
        const const_iterator at = lower_bound(key);
        return at != end() && at->first == key ? at : end();
    }
    bool contains(const Key& key) const { return find(key) != end(); }

    /// Null when absent.
    const Value* get(const Key& key) const
    {
        const const_iterator at = find(key);
        return at == end() ? nullptr : &at->second;
    }
    /// The value for writing; null when absent.
    Value* edit(const Key& key)
    {
        const const_iterator at = find(key);
        if (at == end())
            return nullptr;
        return &m_chunks.edit()[at.m_chunk].items.edit()[at.m_item].second;
    }
    void set(const Key& key, Value value)
    {
        if (Value* old = edit(key)) {
            *old = std::move(value);
            return;
        }
        Chunks& chunks = m_chunks.edit();
        if (chunks.empty())
            chunks.emplace_back();
        const std::size_t at = chunkFor(key);
        Items& items = chunks[at].items.edit();
        items.emplace(items.begin() + static_cast<std::ptrdiff_t>(itemFor(items, key)), key,
                      std::move(value));
        chunks[at].first = items.front().first;
        ++m_size;
        if (items.size() > maxChunk)
            split(chunks, at);
    }
    bool erase(const Key& key)
    {
        const const_iterator at = find(key);
        if (at == end())
            return false;
        Chunks& chunks = m_chunks.edit();
        Items& items = chunks[at.m_chunk].items.edit();
        items.erase(items.begin() + static_cast<std::ptrdiff_t>(at.m_item));
        if (!items.empty())
            chunks[at.m_chunk].first = items.front().first;
        --m_size;
        mergeSmall(chunks, at.m_chunk);
        return true;
    }

private:
    /// The chunk that holds the key or would; there is at least one.
    std::size_t chunkFor(const Key& key) const
    {
        const Chunks& chunks = *m_chunks;
        const auto after = std::upper_bound(chunks.begin(), chunks.end(), key,
                                            [](const Key& k, const Chunk& chunk) { return k < chunk.first; });
        return after == chunks.begin() ? 0 : static_cast<std::size_t>(after - chunks.begin()) - 1;
    }
    static std::size_t itemFor(const Items& items, const Key& key)
    {
        if constexpr (std::is_integral_v<Key>) {
            // Numbers mostly follow each other without a gap.
            const Key guess = items.empty() || key < items.front().first ? 0 : key - items.front().first;
            if (static_cast<std::size_t>(guess) < items.size() &&
                items[static_cast<std::size_t>(guess)].first == key)
                return static_cast<std::size_t>(guess);
        }
        const auto at = std::lower_bound(items.begin(), items.end(), key,
                                         [](const Item& item, const Key& k) { return item.first < k; });
        return static_cast<std::size_t>(at - items.begin());
    }
    static void split(Chunks& chunks, std::size_t at)
    {
        Items& full = chunks[at].items.edit();
        const auto middle = full.begin() + static_cast<std::ptrdiff_t>(full.size() / 2);
        Items upper(std::make_move_iterator(middle), std::make_move_iterator(full.end()));
        full.erase(middle, full.end());
        const Key first = upper.front().first;
        chunks.insert(chunks.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                      Chunk{first, CowPtr<Items>(std::move(upper))});
    }
    /// Keeps many removals from leaving many tiny chunks.
    static void mergeSmall(Chunks& chunks, std::size_t at)
    {
        if (at + 1 < chunks.size() &&
            chunks[at].items->size() + chunks[at + 1].items->size() <= maxChunk / 2) {
            const Items& next = *chunks[at + 1].items;
            Items& here = chunks[at].items.edit();
            here.insert(here.end(), next.begin(), next.end());
            chunks[at].first = here.front().first;
            chunks.erase(chunks.begin() + static_cast<std::ptrdiff_t>(at) + 1);
        }
        if (chunks[at].items->empty())
            chunks.erase(chunks.begin() + static_cast<std::ptrdiff_t>(at));
    }

    CowPtr<Chunks> m_chunks;
    std::size_t m_size = 0;
};

} // namespace vantrel
