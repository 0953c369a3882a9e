#include "common/qml/selectionmodel.h"

namespace vantrel {

namespace {

constexpr int nameRole = 257;

} // namespace

SelectionModel::SelectionModel(QObject* parent)
    : QItemSelectionModel(nullptr, parent)
{
    connect(this, &QItemSelectionModel::selectionChanged, this, &SelectionModel::touch);
    connect(this, &QItemSelectionModel::currentChanged, this, &SelectionModel::touch);
}

void SelectionModel::setRowModel(QAbstractItemModel* model)
{
    if (m_rowModel == model)
        return;
    if (m_rowModel)
        m_rowModel->disconnect(this);
    m_rowModel = model;
    setModel(model);
    m_anchor = -1;
    if (model)
        follow(model);
    Q_EMIT rowModelChanged();
    touch();
}

void SelectionModel::follow(QAbstractItemModel* model)
{
    // Behind those of the base class, which takes the selection away when a model begins anew.
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, &SelectionModel::keepNames);
    connect(model, &QAbstractItemModel::modelReset, this, &SelectionModel::restoreNames);
    connect(model, &QAbstractItemModel::dataChanged, this, [this] { m_rows.reset(); });
    connect(model, &QAbstractItemModel::rowsInserted, this, &SelectionModel::touch);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &SelectionModel::touch);
    connect(model, &QObject::destroyed, this, [this, model] {
        if (m_rowModel != model)
            return;
        m_rowModel = nullptr;
        touch();
    });
}

void SelectionModel::touch()
{
    m_rows.reset();
    ++m_revision;
    Q_EMIT revisionChanged();
}

QModelIndex SelectionModel::at(int row) const
{
    return m_rowModel ? m_rowModel->index(row, 0) : QModelIndex();
}

/// A range may go over rows that are none of the selection.
bool SelectionModel::isSelectable(int row) const
{
    return m_rowModel->flags(at(row)).testFlag(Qt::ItemIsSelectable);
}

int SelectionModel::selectedCount() const
{
    return static_cast<int>(rows().size());
}

bool SelectionModel::isRowSelected(int row) const
{
    return m_rowModel && isSelected(at(row));
}

QList<int> SelectionModel::rows() const
{
    if (!m_rows)
        m_rows = readRows();
    return *m_rows;
}

QList<int> SelectionModel::readRows() const
{
    QList<int> all;
    for (const QItemSelectionRange& range : selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            if (isSelectable(row))
                all.append(row);
        }
    }
    std::sort(all.begin(), all.end());
    return all;
}

void SelectionModel::pick(int row, int modifiers)
{
    const QModelIndex index = at(row);
    if (!index.isValid())
        return;
    const Qt::KeyboardModifiers held(modifiers);
    if (held & Qt::ShiftModifier) {
        const int from = m_anchor >= 0 ? m_anchor : row;
        const QItemSelection range(at(std::min(from, row)), at(std::max(from, row)));
        select(range, held & Qt::ControlModifier ? Select : ClearAndSelect);
        m_anchor = from;
    } else {
        select(index, held & Qt::ControlModifier ? Toggle : ClearAndSelect);
        m_anchor = row;
    }
    setCurrentIndex(index, NoUpdate);
}

void SelectionModel::moveTo(int row)
{
    if (const QModelIndex index = at(row); index.isValid())
        setCurrentIndex(index, NoUpdate);
}

void SelectionModel::toggle(int row)
{
    pick(row, Qt::ControlModifier);
}

void SelectionModel::selectAll()
{
    if (m_rowModel && m_rowModel->rowCount() > 0)
        select(QItemSelection(at(0), at(m_rowModel->rowCount() - 1)), ClearAndSelect);
}

void SelectionModel::keepNames()
{
    m_names.clear();
    for (const int row : rows())
        m_names.insert(at(row).data(nameRole).toString());
    m_currentName = currentIndex().data(nameRole).toString();
}

void SelectionModel::restoreNames()
{
    m_anchor = -1;
    if (m_names.isEmpty() && m_currentName.isEmpty()) {
        touch();
        return;
    }
    QItemSelection chosen;
    for (int row = 0; row < m_rowModel->rowCount(); ++row) {
        const QModelIndex index = at(row);
        const QString name = index.data(nameRole).toString();
        if (name == m_currentName)
            setCurrentIndex(index, NoUpdate);
        if (m_names.contains(name)) {
            if (!chosen.isEmpty() && chosen.last().bottom() == row - 1)
                chosen.last() = QItemSelectionRange(chosen.last().topLeft(), index);
            else
                chosen.append(QItemSelectionRange(index));
        }
    }
    select(chosen, ClearAndSelect);
    m_names.clear();
    touch();
}

} // namespace vantrel
