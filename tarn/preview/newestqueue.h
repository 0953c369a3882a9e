#pragma once

#include <algorithm>
#include <deque>
#include <utility>

namespace vantrel {

/// What waits for a reader that may be slow, the longest waiting first. A newer item takes the place of the
/// waiting one of its kind (Item::isOfOneKindWith), so that the reader never falls behind. Its owner locks.
template <typename Item>
class NewestQueue
{
public:
    bool empty() const { return m_items.empty(); }
    std::size_t size() const { return m_items.size(); }

    void push(Item item)
    {
        const auto older =
            std::ranges::find_if(m_items, [&](const Item& waiting) { return waiting.isOfOneKindWith(item); });
        if (older != m_items.end())
            *older = std::move(item);
        else
            m_items.push_back(std::move(item));
    }

    /// Only where something waits.
    Item take()
    {
        Item first = std::move(m_items.front());
        m_items.pop_front();
        return first;
    }

private:
    std::deque<Item> m_items;
};

} // namespace vantrel
