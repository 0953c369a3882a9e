#include "common/views/media/collectionpanes.h"

#include "common/session/settings/storedvalue.h"

#include <algorithm>

namespace vantrel {

namespace {

const QString shownKey = QStringLiteral("Window/MediaCollections");
const QString currentKey = QStringLiteral("Window/MediaCurrent");

} // namespace

CollectionPanes::CollectionPanes(MediaLibraryModel* library, CollectionNumbers& numbers,
                                 SlotGridModel::IsUsed isUsed, QObject* parent)
    : QAbstractListModel(parent)
    , m_library(library)
    , m_numbers(numbers)
    , m_isUsed(std::move(isUsed))
{
    const QStringList shown = storedValue(shownKey, QStringList()).toStringList();
    for (const QString& collection : shown.first(std::min<qsizetype>(shown.size(), most)))
        m_panes.push_back(makePane(std::max(collection.toInt(), -1)));
    if (m_panes.empty())
        m_panes.push_back(makePane(-1));
    m_current = std::clamp(storedValue(currentKey, 0).toInt(), 0, count() - 1);
    connect(&m_numbers, &CollectionNumbers::changed, this, &CollectionPanes::renumber);
}

CollectionPanes::~CollectionPanes() = default;

CollectionPanes::Pane CollectionPanes::makePane(int collection)
{
    auto model = std::make_unique<SlotGridModel>(m_library, m_isUsed);
    model->setCollection(collection);
    connect(model.get(), &SlotGridModel::collectionChanged, this, [this, shown = model.get()] {
        follow(shown);
        noteShown();
    });
    return {.model = std::move(model), .number = m_numbers.follow(collection)};
}

void CollectionPanes::follow(const SlotGridModel* model)
{
    const int collection = model->collection();
    const CollectionNumbers::Number number = m_numbers.follow(collection);
    const auto pane = std::ranges::find(m_panes, model, [](const Pane& each) { return each.model.get(); });
    // What has just been found out may have led it on.
    if (pane != m_panes.end() && model->collection() == collection)
        pane->number = number;
}

void CollectionPanes::renumber()
{
    for (std::size_t i = 0; i < m_panes.size(); ++i) {
        SlotGridModel* const model = m_panes[i].model.get();
        const int number = *m_panes[i].number;
        if (number == model->collection())
            continue;
        if (number < 0)
            follow(model); // it shows whatever has its number
        else if (static_cast<int>(i) == m_current)
            Q_EMIT currentRenumbered(number);
        else
            model->setCollection(number);
    }
}

int CollectionPanes::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant CollectionPanes::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= count() || role != SlotModelRole)
        return {};
    return QVariant::fromValue(m_panes[static_cast<std::size_t>(index.row())].model.get());
}

QHash<int, QByteArray> CollectionPanes::roleNames() const
{
    return {{SlotModelRole, "slotModel"}};
}

void CollectionPanes::setCurrent(int pane)
{
    if (pane < 0 || pane >= count() || pane == m_current)
        return;
    m_current = pane;
    storeValue(currentKey, m_current);
    Q_EMIT currentChanged();
}

bool CollectionPanes::shows(int collection) const
{
    return std::ranges::any_of(
        m_panes, [collection](const Pane& pane) { return pane.model->collection() == collection; });
}

void CollectionPanes::open(int collection)
{
    if (count() == most)
        return;
    const int at = m_current + 1;
    beginInsertRows({}, at, at);
    m_panes.insert(m_panes.begin() + at, makePane(collection));
    endInsertRows();
    Q_EMIT countChanged();
    setCurrent(at);
    noteShown();
}

void CollectionPanes::close(int pane)
{
    if (count() == 1 || pane < 0 || pane >= count())
        return;
    beginRemoveRows({}, pane, pane);
    // Once what shows it has let go of it.
    m_panes[static_cast<std::size_t>(pane)].model.release()->deleteLater();
    m_panes.erase(m_panes.begin() + pane);
    endRemoveRows();
    if (pane < m_current || m_current == count())
        --m_current;
    storeValue(currentKey, m_current);
    Q_EMIT currentChanged();
    Q_EMIT countChanged();
    noteShown();
}

void CollectionPanes::noteShown()
{
    QStringList shown;
    for (const Pane& pane : m_panes)
        shown.append(QString::number(pane.model->collection()));
    storeValue(shownKey, shown);
    ++m_revision;
    Q_EMIT shownChanged();
}

void CollectionPanes::refreshUse()
{
    for (const Pane& pane : m_panes)
        pane.model->refreshUse();
}

} // namespace vantrel
