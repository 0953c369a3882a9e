// How the table takes over what a patch has made of its playlist.
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/models/playlist/playlistmodel.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace vantrel {

namespace {

using Item = PlaylistRows::Item;

constexpr std::size_t fewEdits = 64;

auto contentOf(const GuiPlaylistEntry& entry)
{
    return std::tuple(entry.slotUrl(), entry.endAction(), entry.transitionType(), entry.transitionDuration());
}

/// Calls with the first and the last of each run of consecutive numbers, ascending.
template <typename Call>
void forEachRun(const std::vector<int>& ascending, const Call& call)
{
    for (std::size_t i = 0; i < ascending.size();) {
        std::size_t end = i + 1;
        while (end < ascending.size() && ascending[end] == ascending[end - 1] + 1)
            ++end;
        call(ascending[i], ascending[end - 1]);
        i = end;
    }
}

} // namespace

/// What the provider has and the rows do not, and the other way round. By ascending address.
struct PlaylistModel::Difference
{
    QList<Item> gone; // entries that are no more, or not there any more, or others
    QList<Item> come;
    std::vector<std::pair<int, Item>> timed; // rows with nothing but other times
    QList<EntryAddress> added;
    QList<EntryAddress> removed;
    QHash<EntryAddress, Item> fates; // by the address in the rows: what an entry of "gone" has become
};

/// Whether somebody tells of what onChangesFinished() takes over as a whole.
bool PlaylistModel::isBehind(EntryAddress address, bool isEdited)
{
    if (!m_isChanging)
        return false;
    m_isBehind = true;
    m_isRearranged = m_isRearranged || !isEdited || m_edited.size() >= fewEdits;
    if (!m_isRearranged)
        m_edited.push_back(address);
    return true;
}

void PlaylistModel::onChangesFinished()
{
    m_isChanging = false;
    const std::vector<EntryAddress> edited = std::exchange(m_edited, {});
    const bool isRearranged = std::exchange(m_isRearranged, false);
    if (std::exchange(m_isBehind, false) && (isRearranged || !takeOverEdits(edited)))
        synchronise();
}

/// What most edits are: one entry has other settings, and some have other times. Nothing is compared then
/// that is not told of. False, with nothing done, where it may be more: several may have changed places.
bool PlaylistModel::takeOverEdits(const std::vector<EntryAddress>& edited)
{
    std::vector<std::pair<int, Item>> news;
    std::vector<int> others, timed;
    for (const EntryAddress& address : edited) {
        const int row = m_rows.rowOf(address);
        const Item item = m_provider && row >= 0 ? m_provider->entry(m_playlist, address) : nullptr;
        if (!item)
            return false;
        (contentOf(*m_rows.at(row)) == contentOf(*item) ? timed : others).push_back(row);
        news.emplace_back(row, item);
    }
    std::ranges::sort(others);
    others.erase(std::ranges::unique(others).begin(), others.end());
    if (others.size() > 1)
        return false;
    for (const auto& [row, item] : news)
        m_rows.replace(row, item);
    if (!others.empty()) {
        knowUrl(*m_rows.at(others.front()));
        doubtOrder();
    }
    emitDataChangedOn(std::move(others));
    emitDataChangedOn(std::move(timed), RuntimeBeforeColumn, RuntimeAfterColumn);
    return true;
}

PlaylistModel::Difference PlaylistModel::compare(const QList<Item>& now) const
{
    Difference difference;
    const auto remove = [&](const Item& item) {
        difference.gone.append(item);
        difference.removed.append(item->address());
    };
    auto row = m_rows.byAddress().begin();
    const auto end = m_rows.byAddress().end();
    for (const Item& item : now) {
        for (; row != end && m_rows.at(*row)->address() < item->address(); ++row)
            remove(m_rows.at(*row));
        if (row == end || item->address() < m_rows.at(*row)->address()) {
            difference.come.append(item);
            difference.added.append(item->address());
            continue;
        }
        const Item& old = m_rows.at(*row);
        if (old != item && contentOf(*old) == contentOf(*item)) {
            difference.timed.emplace_back(*row, item);
        } else if (old != item) {
            difference.gone.append(old);
            difference.come.append(item);
        }
        ++row;
    }
    for (; row != end; ++row)
        remove(m_rows.at(*row));
    return difference;
}

/// An entry that went and came under another address has moved; what else came where one went is its new
/// content. Takes both out of what is gone and come.
void PlaylistModel::findFates(Difference& difference)
{
    std::multimap<decltype(contentOf(std::declval<const GuiPlaylistEntry&>())), Item> gone;
    for (const Item& item : difference.gone)
        gone.emplace(contentOf(*item), item);
    QHash<EntryAddress, Item>& fates = difference.fates;
    difference.come.removeIf([&](const Item& item) {
        const auto from = gone.find(contentOf(*item));
        if (from == gone.end())
            return false;
        fates.insert(from->second->address(), item);
        gone.erase(from);
        return true;
    });
    difference.come.removeIf([&](const Item& item) {
        const bool isEdited = m_rows.rowOf(item->address()) >= 0 && !fates.contains(item->address());
        if (isEdited)
            fates.insert(item->address(), item);
        return isEdited;
    });
    difference.gone.removeIf([&](const Item& item) { return fates.contains(item->address()); });
}

void PlaylistModel::synchronise()
{
    if (!m_provider)
        return;
    Difference difference = compare(m_provider->entries(m_playlist));
    for (const auto& [row, item] : difference.timed)
        m_rows.replace(row, item);
    findFates(difference);
    std::vector<int> rows;
    for (const Item& item : difference.gone)
        rows.push_back(m_rows.rowOf(item->address()));
    removeItems(std::move(rows));
    applyFates(difference.fates);
    insertItems(difference.come);
    if (!difference.timed.empty()) // most of them, as a rule
        Q_EMIT dataChanged(index(0, RuntimeBeforeColumn), index(m_rows.size() - 1, RuntimeAfterColumn));
    if (!difference.removed.isEmpty())
        Q_EMIT entriesRemoved(m_playlist, difference.removed);
    if (!difference.added.isEmpty())
        Q_EMIT entriesAdded(m_playlist, difference.added);
}

/// The library was read anew, in the midst of a show perhaps: what stays keeps its row, its selection and
/// its cell editor. Of its slots anything may have changed.
void PlaylistModel::onLibraryRead()
{
    if (m_rows.size() == 0 || !m_provider || !m_provider->playlist(m_playlist)) {
        onReset();
        return;
    }
    m_isBehind = false;
    m_urls.clear();
    m_areUrlsKnown = false;
    synchronise();
    doubtOrder();
    if (m_rows.size() > 0)
        Q_EMIT dataChanged(index(0, 0), index(m_rows.size() - 1, ColumnCount - 1));
}

/// What is selected stays selected, wherever it goes.
void PlaylistModel::applyFates(const QHash<EntryAddress, Item>& fates)
{
    if (fates.isEmpty())
        return;
    QList<Item> items = m_rows.items();
    QHash<EntryAddress, EntryAddress> moved;
    std::vector<int> rows;
    for (auto fate = fates.begin(); fate != fates.end(); ++fate) {
        rows.push_back(m_rows.rowOf(fate.key()));
        items[rows.back()] = fate.value();
        if (fate.key() != fate.value()->address())
            moved.insert(fate.key(), fate.value()->address());
    }
    if (moved.isEmpty()) {
        for (const int row : rows)
            m_rows.replace(row, items[row]);
        doubtOrder();
        emitDataChangedOn(std::move(rows));
    } else {
        m_isOrderDoubtful = false;
        relayout(rowOrder().sorted(items), moved);
        Q_EMIT dataChanged(index(0, 0), index(m_rows.size() - 1, ColumnCount - 1));
    }
    for (const Item& item : fates)
        knowUrl(*item);
}

void PlaylistModel::removeItems(std::vector<int> rows)
{
    std::ranges::sort(rows);
    std::vector<std::pair<int, int>> runs;
    forEachRun(rows, [&](int first, int last) { runs.emplace_back(first, last); });
    std::ranges::reverse(runs);
    for (const auto& [first, last] : runs) {
        beginRemoveRows({}, first, last);
        m_rows.remove(first, last - first + 1);
        endRemoveRows();
    }
}

/// Where they belong; rows whose order may have become another one are put in order first.
void PlaylistModel::insertItems(const QList<Item>& items)
{
    if (items.isEmpty())
        return;
    const PlaylistOrder order = rowOrder();
    if (std::exchange(m_isOrderDoubtful, false)) {
        const QList<Item> present = order.sorted(m_rows.items());
        if (present != m_rows.items())
            relayout(present, {});
    }
    const QList<Item> sorted = order.sorted(items);
    // Those that belong in front of the same row go there together, the last ones first.
    for (qsizetype end = sorted.size(), first = end; end > 0; end = first) {
        const int row = order.rowFor(m_rows.items(), sorted[end - 1]);
        --first;
        while (first > 0 && order.rowFor(m_rows.items(), sorted[first - 1]) == row)
            --first;
        beginInsertRows({}, row, row + static_cast<int>(end - first) - 1);
        m_rows.insert(row, sorted.mid(first, end - first));
        endInsertRows();
    }
    for (const Item& item : items)
        knowUrl(*item);
}

/// What rows are ordered by may have changed; they stay where they are until something is added.
void PlaylistModel::doubtOrder()
{
    m_isOrderDoubtful = m_sortColumn != NumberColumn;
}

void PlaylistModel::emitDataChangedOn(std::vector<int> rows, int firstColumn, int lastColumn)
{
    std::ranges::sort(rows);
    forEachRun(rows, [=, this](int first, int last) {
        Q_EMIT dataChanged(index(first, firstColumn), index(last, lastColumn));
    });
}

} // namespace vantrel
