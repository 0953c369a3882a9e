#pragma once

#include "common/media/models/playlist/playlistrows.h"

#include <QString>

namespace vantrel {

class PlaylistModel;

/// The order of a playlist's rows by one column. Entries that are alike in it stand by address. Asks nobody
/// for what is not known yet. Lives for one call.
class PlaylistOrder
{
public:
    PlaylistOrder(const PlaylistModel& model, int column, bool isAscending);

    using Item = PlaylistRows::Item;
    QList<Item> sorted(const QList<Item>& items) const;
    /// Where an entry belongs among rows that stand in this order.
    int rowFor(const QList<Item>& items, const Item& item) const;

private:
    struct Key
    {
        double number = 0;
        QString text;
    };
    Key keyOf(const Item& item) const;
    bool isBefore(const Key& a, const Item& first, const Key& b, const Item& second) const;

    const PlaylistModel& m_model;
    const int m_column;
    const bool m_isAscending;
};

} // namespace vantrel
