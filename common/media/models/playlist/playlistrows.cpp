#include "common/media/models/playlist/playlistrows.h"

#include "common/media/items/guiplaylistentry.h"

#include <algorithm>
#include <numeric>

namespace vantrel {

EntryAddress PlaylistRows::addressAt(int row) const
{
    return m_items[row]->address();
}

std::vector<int>::const_iterator PlaylistRows::place(EntryAddress address) const
{
    return std::ranges::lower_bound(m_byAddress, address, {}, [this](int row) { return addressAt(row); });
}

int PlaylistRows::rowOf(EntryAddress address) const
{
    const auto found = place(address);
    return found != m_byAddress.end() && addressAt(*found) == address ? *found : -1;
}

void PlaylistRows::assign(QList<Item> items)
{
    m_items = std::move(items);
    m_byAddress.resize(static_cast<std::size_t>(m_items.size()));
    std::iota(m_byAddress.begin(), m_byAddress.end(), 0);
    const auto address = [this](int row) { return addressAt(row); };
    if (!std::ranges::is_sorted(m_byAddress, {}, address))
        std::ranges::sort(m_byAddress, {}, address);
}

void PlaylistRows::insert(int row, const QList<Item>& items)
{
    const int count = static_cast<int>(items.size());
    for (int& known : m_byAddress)
        known += known >= row ? count : 0;
    m_items.insert(row, count, Item());
    std::ranges::copy(items, m_items.begin() + row);
    std::vector<int> added(static_cast<std::size_t>(count));
    std::iota(added.begin(), added.end(), row);
    const auto old = static_cast<std::ptrdiff_t>(m_byAddress.size());
    m_byAddress.insert(m_byAddress.end(), added.begin(), added.end());
    std::ranges::inplace_merge(m_byAddress, m_byAddress.begin() + old, {},
                               [this](int r) { return addressAt(r); });
}

void PlaylistRows::remove(int row, int count)
{
    std::erase_if(m_byAddress, [=](int known) { return known >= row && known < row + count; });
    for (int& known : m_byAddress)
        known -= known >= row ? count : 0;
    m_items.remove(row, count);
}

} // namespace vantrel
