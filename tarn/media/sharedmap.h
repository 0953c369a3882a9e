#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <iterator>
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

    class const_iterator
    {
    public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = Item;
        using difference_type = std::ptrdiff_t;
        using pointer = const Item*;
        using reference = const Item&;

        const_iterator() = default;
        reference operator*() const { return (*m_chunks)[m_chunk].operator*()[m_item]; }
        pointer operator->() const { return &**this; }
        const_iterator& operator++()
        {
            if (++m_item == (*m_chunks)[m_chunk]->size()) {
                ++m_chunk;
                m_item = 0;
            }
            return *this;
        }
        const_iterator& operator--()
        {
            if (m_item == 0)
                m_item = (*m_chunks)[--m_chunk]->size();
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
        using Chunks = std::vector<CowPtr<std::vector<Item>>>;
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
        const std::size_t item = itemFor(*(*m_chunks)[chunk], key);
        if (item == (*m_chunks)[chunk]->size())
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
        return &m_chunks.edit()[at.m_chunk].edit()[at.m_item].second;
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
        Chunk& chunk = chunks[at].edit();
        chunk.emplace(chunk.begin() + static_cast<std::ptrdiff_t>(itemFor(chunk, key)), key,
                      std::move(value));
        ++m_size;
        if (chunk.size() > maxChunk)
            split(chunks, at);
    }
    bool erase(const Key& key)
    {
        const const_iterator at = find(key);
        if (at == end())
            return false;
        Chunks& chunks = m_chunks.edit();
        Chunk& chunk = chunks[at.m_chunk].edit();
        chunk.erase(chunk.begin() + static_cast<std::ptrdiff_t>(at.m_item));
        --m_size;
        mergeSmall(chunks, at.m_chunk);
        return true;
    }

private:
    using Chunk = std::vector<Item>;
    using Chunks = std::vector<CowPtr<Chunk>>;

    /// The chunk that holds the key or would; there is at least one.
    std::size_t chunkFor(const Key& key) const
    {
        const Chunks& chunks = *m_chunks;
        const auto after =
            std::upper_bound(chunks.begin(), chunks.end(), key, [](const Key& k, const auto& chunk) {
                return !chunk->empty() && k < chunk->front().first;
            });
        return after == chunks.begin() ? 0 : static_cast<std::size_t>(after - chunks.begin()) - 1;
    }
    static std::size_t itemFor(const Chunk& chunk, const Key& key)
    {
        const auto at = std::lower_bound(chunk.begin(), chunk.end(), key,
                                         [](const Item& item, const Key& k) { return item.first < k; });
        return static_cast<std::size_t>(at - chunk.begin());
    }
    static void split(Chunks& chunks, std::size_t at)
    {
        Chunk& full = chunks[at].edit();
        const auto middle = full.begin() + static_cast<std::ptrdiff_t>(full.size() / 2);
        Chunk upper(std::make_move_iterator(middle), std::make_move_iterator(full.end()));
        full.erase(middle, full.end());
        chunks.emplace(chunks.begin() + static_cast<std::ptrdiff_t>(at) + 1, std::move(upper));
    }
    /// Keeps many removals from leaving many tiny chunks.
    static void mergeSmall(Chunks& chunks, std::size_t at)
    {
        if (at + 1 < chunks.size() && chunks[at]->size() + chunks[at + 1]->size() <= maxChunk / 2) {
            const Chunk& next = *chunks[at + 1];
            Chunk& here = chunks[at].edit();
            here.insert(here.end(), next.begin(), next.end());
            chunks.erase(chunks.begin() + static_cast<std::ptrdiff_t>(at) + 1);
        }
        if (chunks[at]->empty())
            chunks.erase(chunks.begin() + static_cast<std::ptrdiff_t>(at));
    }

    CowPtr<Chunks> m_chunks;
    std::size_t m_size = 0;
};

} // namespace vantrel
