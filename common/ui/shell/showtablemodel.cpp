#include "common/ui/shell/showtablemodel.h"

namespace vantrel {

ShowTableModel::ShowTableModel(QStringList headers, QObject* parent)
    : QAbstractTableModel(parent)
    , m_headers(std::move(headers))
{
}

void ShowTableModel::setRows(QList<Row> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int ShowTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ShowTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_headers.size());
}

QVariant ShowTableModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row& row = m_rows[index.row()];
    if (role == Qt::DisplayRole)
        return row.cells.value(index.column());
    if (role == Qt::ToolTipRole) // a cell may be too narrow for its text
        return row.fault.isEmpty() ? row.cells.value(index.column()).toHtmlEscaped()
                                   : row.fault.toHtmlEscaped();
    return {};
}

QVariant ShowTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    return role == Qt::DisplayRole && orientation == Qt::Horizontal ? m_headers.value(section) : QVariant();
}

Qt::ItemFlags ShowTableModel::flags(const QModelIndex& index) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return Qt::NoItemFlags;
    return m_rows[index.row()].fault.isEmpty() ? QAbstractTableModel::flags(index)
                                               : Qt::ItemFlags(Qt::ItemIsSelectable);
}

} // namespace vantrel
