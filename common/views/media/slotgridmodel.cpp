#include "common/views/media/slotgridmodel.h"

#include "common/media/address/mediafiles.h"
#include "common/media/address/mediastate.h"
#include "common/media/address/showntext.h"
#include "common/media/models/medialibrarymodel.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr int turnMs = 5;
constexpr std::size_t mostRuns =
    64; // of rows that come or go: beyond them a view is quicker when it begins anew
constexpr int looksBetweenClocks = 32;

} // namespace

SlotGridModel::SlotGridModel(MediaLibraryModel* library, IsUsed isUsed, QObject* parent)
    : QAbstractListModel(parent)
    , m_library(library)
    , m_isUsed(std::move(isUsed))
    , m_seen(makeRef<MediaLibrary>(*library->mediaLibrary()))
{
    connect(&m_turn, &Turn::come, this, &SlotGridModel::scan);
    connect(library, &QAbstractItemModel::dataChanged, this, &SlotGridModel::onDataChanged);
    connect(library, &QAbstractItemModel::rowsInserted, this, &SlotGridModel::onRowsCame);
    connect(library, &QAbstractItemModel::rowsRemoved, this, &SlotGridModel::onRowsCame);
    connect(library, &QAbstractItemModel::modelReset, this, &SlotGridModel::onLibraryAnew);
}

SlotGridModel::~SlotGridModel() = default;

int SlotGridModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

Qt::ItemFlags SlotGridModel::flags(const QModelIndex& index) const
{
    return !index.isValid() || isSlotAt(index.row()) ? QAbstractListModel::flags(index)
                                                     : Qt::ItemFlags(Qt::ItemIsEnabled);
}

QModelIndex SlotGridModel::sourceOf(int slot) const
{
    const QModelIndex root = m_library->collectionIndex(m_collection);
    return root.isValid() ? m_library->index(slot, MediaLibraryModel::NameColumn, root) : QModelIndex();
}

QVariant SlotGridModel::sourceData(int slot, int role) const
{
    return sourceOf(slot).data(role);
}

QVariant SlotGridModel::data(const QModelIndex& index, int role) const
{
    const int slot = slotAt(index.row());
    if (!index.isValid() || slot < 0)
        return {};
    if (!isSlotAt(index.row()))
        return placeData(index.row(), role);
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return sourceData(slot, MediaLibraryModel::NameRole).toString();
    case KeyRole:
        return keyOf(slot);
    case SlotRole:
    case LastRole:
        return slot;
    case DurationRole:
        return sourceData(slot, MediaLibraryModel::DurationRole).toString();
    case ThumbnailRole:
        return thumbnailOf(slot);
    case StateRole:
        return sourceData(slot, MediaLibraryModel::KnownStateRole).toInt();
    case KindRole:
        return sourceData(slot, MediaLibraryModel::KnownTypeRole).toInt();
    case FaultsRole:
        return faultsOf(slot);
    case PlayableRole:
        return sourceData(slot, MediaLibraryModel::PlayableRole).toBool();
    case FileRole:
        return sourceData(slot, MediaLibraryModel::UrlRole).toUrl().fileName();
    case PlaceRole:
    case SpokenRole:
        return QString();
    default:
        return {};
    }
}

/// A view takes each of them for what it says it is of a slot, too.
QVariant SlotGridModel::placeData(int row, int role) const
{
    const Row& at = m_rows[static_cast<std::size_t>(row)];
    SlotPlace place{.first = at.first, .last = at.last, .isSlot = at.kind == Row::Empty};
    if (place.isSlot)
        place.name = shownText(sourceData(at.first, MediaLibraryModel::NameRole).toString());
    switch (role) {
    case Qt::DisplayRole:
        return place.text();
    case NameRole:
        return place.state();
    case KeyRole:
    case PlaceRole:
        return place.numbers();
    case SpokenRole:
        return place.spoken();
    case SlotRole:
        return at.first;
    case LastRole:
        return at.last;
    case StateRole:
        return static_cast<int>(MediaState::UnknownState);
    case KindRole:
        return static_cast<int>(MediaType::Unknown);
    case PlayableRole:
        return true;
    case DurationRole:
    case FaultsRole:
    case FileRole:
        return QString();
    default:
        return {};
    }
}

QHash<int, QByteArray> SlotGridModel::roleNames() const
{
    return {{KeyRole, "key"},         {SlotRole, "slot"},           {NameRole, "name"},
            {DurationRole, "length"}, {ThumbnailRole, "thumbnail"}, {StateRole, "mediaState"},
            {KindRole, "kind"},       {FaultsRole, "faults"},       {PlayableRole, "isPlayable"},
            {FileRole, "file"},       {LastRole, "last"},           {PlaceRole, "place"},
            {SpokenRole, "spoken"}};
}

void SlotGridModel::setCollection(int collection)
{
    if (m_collection == collection)
        return;
    beginResetModel();
    m_collection = collection;
    m_rows.clear();
    m_seen = makeRef<MediaLibrary>(*m_library->mediaLibrary());
    m_count = 0;
    m_total = 0;
    endResetModel();
    Q_EMIT collectionChanged();
    Q_EMIT countChanged();
    refresh();
}

bool SlotGridModel::isThere() const
{
    return m_library->collectionIndex(m_collection).isValid();
}

QString SlotGridModel::name() const
{
    return shownText(m_library->collectionIndex(m_collection)
                         .siblingAtColumn(MediaLibraryModel::NameColumn)
                         .data()
                         .toString());
}

void SlotGridModel::setSearchText(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (m_searchText == trimmed)
        return;
    m_searchText = trimmed;
    changeFilter();
}

void SlotGridModel::setKind(int kind)
{
    if (m_kind == kind)
        return;
    m_kind = kind;
    changeFilter();
}

void SlotGridModel::setUnusableOnly(bool only)
{
    if (m_unusableOnly == only)
        return;
    m_unusableOnly = only;
    changeFilter();
}

void SlotGridModel::setUnusedOnly(bool only)
{
    if (m_unusedOnly == only)
        return;
    m_unusedOnly = only;
    changeFilter();
}

void SlotGridModel::changeFilter()
{
    Q_EMIT filterChanged();
    refresh();
}

int SlotGridModel::slotAt(int row) const
{
    return row >= 0 && row < rowCount() ? m_rows[static_cast<std::size_t>(row)].first : -1;
}

bool SlotGridModel::isSlotAt(int row) const
{
    return row >= 0 && row < rowCount() && m_rows[static_cast<std::size_t>(row)].kind == Row::Media;
}

int SlotGridModel::nearestSlot(int row, bool isBefore) const
{
    while (row >= 0 && row < rowCount() && !isSlotAt(row))
        row += isBefore ? -1 : 1;
    return isSlotAt(row) ? row : -1;
}

int SlotGridModel::numberBefore(int row) const
{
    const int slot = slotAt(row);
    return slot < 0 ? 0 : isSlotAt(row) ? slot : slot - 1;
}

QList<int> SlotGridModel::slotsAt(const QList<int>& rows) const
{
    QList<int> numbers;
    numbers.reserve(rows.size());
    for (const int row : rows)
        numbers.append(slotAt(row));
    return numbers;
}

int SlotGridModel::rowOf(int slot) const
{
    const int row = rowHolding(slot);
    return isSlotAt(row) ? row : -1;
}

int SlotGridModel::rowHolding(int slot) const
{
    const auto behind = std::ranges::upper_bound(m_rows, slot, {}, &Row::first);
    return behind != m_rows.begin() && std::prev(behind)->last >= slot
               ? static_cast<int>(behind - m_rows.begin()) - 1
               : -1;
}

int SlotGridModel::rowFrom(int slot) const
{
    return static_cast<int>(std::ranges::lower_bound(m_rows, slot, {}, &Row::first) - m_rows.begin());
}

int SlotGridModel::findRow(const QString& text, int from) const
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber && rowHolding(number) >= 0)
        return rowHolding(number);
    for (int step = 0; step < rowCount(); ++step) {
        const int row = (std::max(from, 0) + step) % rowCount();
        const int slot = slotAt(row);
        if (!isSlotAt(row))
            continue;
        if (isNumber ? QString::number(slot).startsWith(text)
                     : sourceData(slot, MediaLibraryModel::NameRole)
                           .toString()
                           .startsWith(text, Qt::CaseInsensitive))
            return row;
    }
    return -1;
}

QString SlotGridModel::pictureOf(int slot) const
{
    return thumbnailOf(slot).isValid()
               ? thumbnailImageUrl(sourceData(slot, MediaLibraryModel::UrlRole).toUrl())
               : QString();
}

QVariant SlotGridModel::thumbnailOf(int slot) const
{
    const QModelIndex source = sourceOf(slot);
    m_library->fetchThumbnail(source);
    source.data(MediaLibraryModel::StateRole);
    return source.data(MediaLibraryModel::KnownThumbnailRole);
}

QString SlotGridModel::faultsOf(int slot) const
{
    const QStringList faults = sourceData(slot, MediaLibraryModel::KnownFaultsRole).toStringList();
    const bool isPlayable = sourceData(slot, MediaLibraryModel::PlayableRole).toBool();
    return faults.isEmpty() && !isPlayable ? tr("The file is missing or cannot be played.")
                                           : faults.join(u'\n');
}

QString SlotGridModel::keyOf(int slot) const
{
    const MediaSlot* seen = std::as_const(*m_seen).findSlot(m_collection, slot);
    return QString::number(slot) + u' ' + (seen ? QString::fromStdString(seen->getUrl()) : QString());
}

bool SlotGridModel::holdsMedia(int slot) const
{
    return m_library->holdsMedia({m_collection, slot});
}

bool SlotGridModel::passes(int slot) const
{
    if (m_unusableOnly && sourceData(slot, MediaLibraryModel::PlayableRole).toBool())
        return false;
    if (m_kind >= 0 && sourceData(slot, MediaLibraryModel::KnownTypeRole).toInt() != m_kind)
        return false;
    if (m_unusedOnly && m_isUsed && m_isUsed({m_collection, slot}))
        return false;
    return m_searchText.isEmpty() ||
           isSlotFound(m_searchText, slot, sourceData(slot, MediaLibraryModel::NameRole).toString(),
                       sourceData(slot, MediaLibraryModel::UrlRole).toUrl());
}

bool SlotGridModel::isFiltered() const
{
    return !m_searchText.isEmpty() || m_kind >= 0 || m_unusableOnly || m_unusedOnly;
}

/// Whether a look would find the number as it is shown.
bool SlotGridModel::isAsShown(int slot) const
{
    const int row = rowHolding(slot);
    if (slot < MediaCollection::slotIndexMin || (row < 0 && isFiltered() && !holdsMedia(slot)))
        return true;
    if (holdsMedia(slot))
        return isSlotAt(row) == passes(slot);
    const auto kind = m_library->nextSlot(m_collection, slot) == slot ? Row::Empty : Row::Free;
    return row >= 0 && m_rows[static_cast<std::size_t>(row)].kind == kind;
}

void SlotGridModel::onDataChanged(const QModelIndex& first, const QModelIndex& last)
{
    const QModelIndex root = m_library->collectionIndex(m_collection);
    if (!first.parent().isValid())
        Q_EMIT nameChanged();
    if (!root.isValid() || first.parent() != root)
        return;
    leaveOthers(first.row(), last.row());
    const int begin = rowFrom(first.row());
    const int end = rowFrom(last.row() + 1);
    if (begin != end)
        Q_EMIT dataChanged(index(begin), index(end - 1));
    // The look under way has yet to come there.
    const int slot = first.row();
    if (m_turn.isAsked() && slot > m_next)
        return;
    // Thumbnails come one by one, and change nothing else.
    if (m_turn.isAsked() || slot != last.row() || !isAsShown(slot))
        refresh();
}

/// A collection that is new may have the number of one that is gone.
void SlotGridModel::onRowsCame(const QModelIndex& parent)
{
    if (parent.isValid())
        refresh();
    else
        onLibraryAnew();
}

/// Nothing tells what became of which slot. The view may begin anew as well: the selection keeps what is
/// there as it was.
void SlotGridModel::onLibraryAnew()
{
    const auto now = makeRef<MediaLibrary>(*m_library->mediaLibrary());
    const bool hasOthers = std::ranges::any_of(m_rows, [&](const Row& row) {
        if (row.kind != Row::Media)
            return false;
        const MediaSlot* before = std::as_const(*m_seen).findSlot(m_collection, row.first);
        const MediaSlot* after = std::as_const(*now).findSlot(m_collection, row.first);
        return !before || !after || before->getUrl() != after->getUrl();
    });
    if (hasOthers)
        beginResetModel();
    m_seen = now;
    if (hasOthers)
        endResetModel();
    refresh();
}

/// An edit that gives a slot another name, or has its medium in another file, leaves it the one that it is.
void SlotGridModel::leaveOthers(int first, int last)
{
    if (!m_seen->findCollection(m_collection))
        return;
    std::vector<std::pair<int, MediaSlot>> changed;
    std::vector<int> others;
    for (int slot = first; slot <= last; ++slot) {
        const MediaSlot* before = std::as_const(*m_seen).findSlot(m_collection, slot);
        const MediaSlot* after = std::as_const(*m_library->mediaLibrary()).findSlot(m_collection, slot);
        const MediaSlot now = after ? *after : MediaSlot();
        if (before ? *before == now : !after)
            continue;
        changed.emplace_back(slot, now);
        if (before && rowOf(slot) >= 0 && before->getUrl() != now.getUrl() &&
            before->getName() != now.getName())
            others.push_back(slot);
    }
    std::vector<std::pair<int, int>> runs; // of rows side by side, first and last
    for (const int slot : others) {
        if (const int row = rowOf(slot); !runs.empty() && runs.back().second == row - 1)
            runs.back().second = row;
        else
            runs.emplace_back(row, row);
    }
    const bool isAnew = runs.size() > mostRuns;
    if (isAnew)
        beginResetModel(); // what is selected is told by what has been seen
    for (const auto& [slot, now] : changed)
        m_seen->findCollection(m_collection)->insertMediaSlot(slot, now, true);
    if (isAnew)
        return endResetModel();
    for (auto run = runs.rbegin(); run != runs.rend(); ++run)
        replaceRows(run->first, run->second);
    if (!runs.empty())
        refresh(); // how many there are, and free places beside them
}

/// By what a look finds there now, but for free places, which it joins to those beside them.
void SlotGridModel::replaceRows(int first, int last)
{
    Rows others;
    for (int row = first; row <= last; ++row) {
        const int slot = slotAt(row);
        const bool isMedia = holdsMedia(slot);
        if (isMedia ? !passes(slot) : isFiltered())
            continue;
        const bool isFree = !isMedia && m_library->nextSlot(m_collection, slot) != slot;
        if (isFree && !others.empty() && others.back().kind == Row::Free && others.back().last == slot - 1)
            others.back().last = slot;
        else
            others.push_back({slot, slot, isMedia ? Row::Media : isFree ? Row::Free : Row::Empty});
    }
    beginRemoveRows({}, first, last);
    m_rows.erase(m_rows.begin() + first, m_rows.begin() + last + 1);
    endRemoveRows();
    if (others.empty())
        return;
    beginInsertRows({}, first, first + static_cast<int>(others.size()) - 1);
    m_rows.insert(m_rows.begin() + first, others.begin(), others.end());
    endInsertRows();
}

void SlotGridModel::refresh()
{
    Q_EMIT nameChanged();
    m_next = MediaCollection::slotIndexMin;
    m_holding = 0;
    m_passing = 0;
    m_found.clear();
    m_turn.ask();
}

void SlotGridModel::refreshUse()
{
    if (m_unusedOnly)
        refresh();
}

/// Goes on behind what it finds there.
void SlotGridModel::lookAt(int slot)
{
    m_next = slot + 1;
    if (holdsMedia(slot)) {
        ++m_holding;
        if (!passes(slot))
            return;
        ++m_passing;
        m_found.push_back({slot, slot, Row::Media});
    } else if (!isFiltered()) { // what is left out is not free
        const SlotPlace place = SlotPlace::from(*m_library, m_collection, slot);
        m_found.push_back({place.first, place.last, place.isSlot ? Row::Empty : Row::Free});
        m_next = place.last + 1;
    }
}

void SlotGridModel::scan()
{
    const QModelIndex root = m_library->collectionIndex(m_collection);
    // The view of a collection without slots is one place as a whole.
    const int end = !root.isValid() || m_library->nextSlot(m_collection, MediaCollection::slotIndexMin) < 0
                        ? 0
                    : isFiltered() ? m_library->rowCount(root)
                                   : MediaCollection::slotIndexMax + 1;
    QElapsedTimer clock;
    clock.start();
    for (int looks = 1; m_next < end; ++looks) {
        lookAt(m_next);
        if (looks % looksBetweenClocks == 0 && clock.elapsed() >= turnMs) {
            m_turn.ask();
            return;
        }
    }
    take();
}

void SlotGridModel::take()
{
    const bool isOther = m_found != m_rows;
    if (!isOther && m_total == m_holding && m_count == m_passing)
        return;
    m_total = m_holding;
    m_count = m_passing;
    if (isOther && !takeByRow()) {
        beginResetModel();
        m_rows.swap(m_found);
        endResetModel();
    }
    m_found.clear();
    Q_EMIT countChanged();
}

/// False where so many runs of rows come and go that a view had better begin anew.
bool SlotGridModel::takeByRow()
{
    struct Run
    {
        std::size_t first;
        std::size_t count;
    };
    const auto runsOf = [](const Rows& of, const Rows& without) {
        std::vector<Run> runs;
        auto other = without.begin();
        for (std::size_t row = 0; row < of.size(); ++row) {
            other = std::lower_bound(other, without.end(), of[row]);
            if (other != without.end() && *other == of[row])
                continue;
            if (!runs.empty() && runs.back().first + runs.back().count == row)
                ++runs.back().count;
            else
                runs.push_back({row, 1});
        }
        return runs;
    };
    const std::vector<Run> gone = runsOf(m_rows, m_found);
    const std::vector<Run> added = runsOf(m_found, m_rows);
    if (gone.size() + added.size() > mostRuns)
        return false;
    for (auto run = gone.rbegin(); run != gone.rend(); ++run) {
        const auto first = m_rows.begin() + static_cast<std::ptrdiff_t>(run->first);
        beginRemoveRows({}, static_cast<int>(run->first), static_cast<int>(run->first + run->count) - 1);
        m_rows.erase(first, first + static_cast<std::ptrdiff_t>(run->count));
        endRemoveRows();
    }
    for (const Run& run : added) {
        const auto from = m_found.begin() + static_cast<std::ptrdiff_t>(run.first);
        beginInsertRows({}, static_cast<int>(run.first), static_cast<int>(run.first + run.count) - 1);
        m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(run.first), from,
                      from + static_cast<std::ptrdiff_t>(run.count));
        endInsertRows();
    }
    return true;
}

} // namespace vantrel
