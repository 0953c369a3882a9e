#include "common/media/models/playlist/playlistorder.h"

#include "common/media/items/guiplaylistentry.h"
#include "common/media/models/playlist/playlistmodel.h"

#include <algorithm>
#include <vector>

namespace vantrel {

PlaylistOrder::PlaylistOrder(const PlaylistModel& model, int column, bool isAscending)
    : m_model(model)
    , m_column(column)
    , m_isAscending(isAscending)
{
}

PlaylistOrder::Key PlaylistOrder::keyOf(const Item& item) const
{
    switch (m_column) {
    case PlaylistModel::EndActionColumn:
        return {static_cast<double>(item->endAction()), {}};
    case PlaylistModel::TransitionColumn:
        return {static_cast<double>(item->transitionType()), {}};
    case PlaylistModel::StateColumn:
        return {static_cast<double>(m_model.knownState(*item)), {}};
    case PlaylistModel::MediaColumn:
        return {0, m_model.mediaName(*item)};
    case PlaylistModel::DurationColumn:
        return {m_model.shownDuration(*item), {}};
    case PlaylistModel::TransitionDurationColumn:
        return {item->transitionDuration(), {}};
    case PlaylistModel::SizeColumn:
        return {static_cast<double>(m_model.knownSize(*item)), {}};
    default:
        return {}; // the address decides
    }
}

bool PlaylistOrder::isBefore(const Key& a, const Item& first, const Key& b, const Item& second) const
{
    if (a.number != b.number)
        return (a.number < b.number) == m_isAscending;
    if (const int order = a.text.compare(b.text, Qt::CaseInsensitive); order != 0)
        return (order < 0) == m_isAscending;
    const bool isAscending = m_isAscending || m_column != PlaylistModel::NumberColumn;
    return isAscending ? first->address() < second->address() : second->address() < first->address();
}

QList<PlaylistOrder::Item> PlaylistOrder::sorted(const QList<Item>& items) const
{
    std::vector<std::pair<Key, Item>> keyed;
    keyed.reserve(static_cast<std::size_t>(items.size()));
    for (const Item& item : items)
        keyed.emplace_back(keyOf(item), item);
    const auto before = [this](const auto& a, const auto& b) {
        return isBefore(a.first, a.second, b.first, b.second);
    };
    if (std::is_sorted(keyed.begin(), keyed.end(), before))
        return items;
    std::sort(keyed.begin(), keyed.end(), before);
    QList<Item> sorted;
    sorted.reserve(items.size());
    for (auto& [key, item] : keyed)
        sorted.append(std::move(item));
    return sorted;
}

int PlaylistOrder::rowFor(const QList<Item>& items, const Item& item) const
{
    const Key key = keyOf(item);
    const auto at = std::partition_point(items.begin(), items.end(), [&](const Item& other) {
        return isBefore(keyOf(other), other, key, item);
    });
    return static_cast<int>(at - items.begin());
}

} // namespace vantrel
