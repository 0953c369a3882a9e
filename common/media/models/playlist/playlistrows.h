#pragma once

#include "tarn/media/entryaddress.h"

#include <QList>

#include <memory>
#include <vector>

namespace vantrel {

class GuiPlaylistEntry;

/// The entries of a playlist in the order of the screen, found by their addresses as well. Between any two
/// calls each address stands in exactly one row. Belongs to a model.
class PlaylistRows
{
public:
    using Item = std::shared_ptr<const GuiPlaylistEntry>;

    int size() const { return static_cast<int>(m_items.size()); }
    const Item& at(int row) const { return m_items[row]; }
    const QList<Item>& items() const { return m_items; }
    /// -1 when absent.
    int rowOf(EntryAddress address) const;
    /// The rows by ascending address.
    const std::vector<int>& byAddress() const { return m_byAddress; }

    /// Takes entries that each have an address of their own, in any order.
    void assign(QList<Item> items);
    void clear() { assign({}); }
    /// The item has the same address as what stands there.
    void replace(int row, const Item& item) { m_items[row] = item; }
    /// Entries whose addresses are ascending and not here yet, in consecutive rows from "row" on.
    void insert(int row, const QList<Item>& items);
    void remove(int row, int count);

private:
    std::vector<int>::const_iterator place(EntryAddress address) const;
    EntryAddress addressAt(int row) const;

    QList<Item> m_items;
    std::vector<int> m_byAddress;
};

} // namespace vantrel
