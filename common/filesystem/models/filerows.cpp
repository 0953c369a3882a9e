#include "common/filesystem/models/filerows.h"

#include "common/filesystem/model/nameorder.h"

#include <QSet>

#include <algorithm>
#include <numeric>

namespace vantrel {

namespace {

constexpr std::size_t mostEdits = 200; // a view takes a reset faster than more of them

/// What names and kinds compare by, made once a row.
struct SortKeys
{
    NameOrder names;
    std::vector<QString> kinds;
};

SortKeys keysOf(const FileRows& rows, bool byKind)
{
    QStringList names;
    names.reserve(static_cast<qsizetype>(rows.size()));
    for (const FileRow& row : rows)
        names.append(row.name);
    SortKeys keys{NameOrder(names), {}};
    if (byKind) {
        for (const FileRow& row : rows)
            keys.kinds.push_back(fileKind(row.name));
    }
    return keys;
}

/// Below, equal to or above 0 as the first comes before, with or behind the second; names are not looked at.
int compare(const FileRows& rows, const SortKeys& keys, const FileSorting& sorting, std::size_t a,
            std::size_t b)
{
    const auto order = [](const auto& first, const auto& second) {
        return first < second ? -1 : second < first ? 1 : 0;
    };
    switch (sorting.by) {
    case FileSorting::By::Name:
        return keys.names.compare(a, b);
    case FileSorting::By::Size:
        return order(rows[a].sizeBytes, rows[b].sizeBytes);
    case FileSorting::By::Type:
        return order(keys.kinds[a], keys.kinds[b]);
    case FileSorting::By::Duration:
        return order(sorting.durations.value(rows[a].name), sorting.durations.value(rows[b].name));
    }
    return 0;
}

} // namespace

void sortRows(FileRows& rows, const FileSorting& sorting)
{
    const SortKeys keys = keysOf(rows, sorting.by == FileSorting::By::Type);
    std::vector<std::size_t> places(rows.size());
    std::iota(places.begin(), places.end(), 0);
    std::sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) {
        if (rows[a].isDirectory != rows[b].isDirectory)
            return rows[a].isDirectory;
        if (const int first = compare(rows, keys, sorting, a, b))
            return sorting.order == Qt::AscendingOrder ? first < 0 : first > 0;
        if (const int byName = keys.names.compare(a, b))
            return byName < 0;
        return rows[a].name < rows[b].name;
    });
    FileRows sorted;
    sorted.reserve(rows.size());
    for (const std::size_t place : places)
        sorted.push_back(std::move(rows[place]));
    rows = std::move(sorted);
}

RowChange changeRows(const FileRows& from, FileRows to)
{
    RowChange change;
    change.rows = std::move(to);
    QHash<QString, int> places;
    places.reserve(static_cast<qsizetype>(change.rows.size()));
    for (std::size_t i = 0; i < change.rows.size(); ++i)
        places.insert(change.rows[i].name, static_cast<int>(i));
    std::vector<bool> isKept(change.rows.size());
    int last = -1;
    for (std::size_t i = 0; i < from.size(); ++i) {
        const int place = places.value(from[i].name, -1);
        const bool stays = place >= 0 && change.rows[place].isDirectory == from[i].isDirectory;
        if (!stays) {
            change.removed.push_back(static_cast<int>(i));
            continue;
        }
        change.isReset = change.isReset || place <= last; // one that moved, or a name that is there twice
        last = place;
        isKept[static_cast<std::size_t>(place)] = true;
        if (change.rows[place].sizeBytes != from[i].sizeBytes)
            change.changed.push_back(place);
    }
    for (std::size_t i = 0; i < isKept.size(); ++i) {
        if (!isKept[i])
            change.inserted.push_back(static_cast<int>(i));
    }
    change.isReset = change.isReset || change.removed.size() + change.inserted.size() > mostEdits;
    return change;
}

QString fileKind(const QString& name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.mid(dot + 1).toUpper() : QString();
}

} // namespace vantrel
