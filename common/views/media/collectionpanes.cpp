#include "common/views/media/collectionpanes.h"

#include "common/session/settings/storedvalue.h"

#include <algorithm>

namespace vantrel {

namespace {

const QString shownKey = QStringLiteral("Window/MediaCollections");
const QString currentKey = QStringLiteral("Window/MediaCurrent");

} // namespace

CollectionPanes::CollectionPanes(MediaLibraryModel* library, SlotGridModel::IsUsed isUsed, QObject* parent)
    : QAbstractListModel(parent)
    , m_library(library)
    , m_isUsed(std::move(isUsed))
{
    const QStringList shown = storedValue(shownKey, QStringList()).toStringList();
    for (const QString& collection : shown.first(std::min<qsizetype>(shown.size(), most)))
        m_panes.push_back(makePane(std::max(collection.toInt(), -1)));
    if (m_panes.empty())
        m_panes.push_back(makePane(-1));
    m_current = std::clamp(storedValue(currentKey, 0).toInt(), 0, count() - 1);
}

CollectionPanes::~CollectionPanes() = default;

std::unique_ptr<SlotGridModel> CollectionPanes::makePane(int collection)
{
    auto pane = std::make_unique<SlotGridModel>(m_library, m_isUsed);
    pane->setCollection(collection);
    connect(pane.get(), &SlotGridModel::collectionChanged, this, &CollectionPanes::noteShown);
    return pane;
}

int CollectionPanes::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant CollectionPanes::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= count() || role != SlotModelRole)
        return {};
    return QVariant::fromValue(m_panes[static_cast<std::size_t>(index.row())].get());
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
    return std::ranges::any_of(m_panes,
                               [collection](const auto& pane) { return pane->collection() == collection; });
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
    m_panes[static_cast<std::size_t>(pane)].release()->deleteLater();
    m_panes.erase(m_panes.begin() + pane);
    endRemoveRows();
    if (pane < m_current || m_current == count())
        --m_current;
    storeValue(currentKey, m_current);
    Q_EMIT currentChanged();
    Q_EMIT countChanged();
    noteShown();
}

void CollectionPanes::renumber(const std::map<int, int>& numbers)
{
    for (const auto& pane : m_panes) {
        const auto number = numbers.find(pane->collection());
        if (pane.get() != slotModel() && number != numbers.end())
            pane->setCollection(number->second);
    }
}

void CollectionPanes::noteShown()
{
    QStringList shown;
    for (const auto& pane : m_panes)
        shown.append(QString::number(pane->collection()));
    storeValue(shownKey, shown);
    ++m_revision;
    Q_EMIT shownChanged();
}

void CollectionPanes::refreshUse()
{
    for (const auto& pane : m_panes)
        pane->refreshUse();
}

} // namespace vantrel
