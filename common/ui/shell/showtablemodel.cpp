#include "common/ui/shell/showtablemodel.h"

#include "common/ui/style/colors.h"

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
    if (role == Qt::ForegroundRole && !row.fault.isEmpty())
        return colors::getColor(colors::Zt_white_50);
    return {};
}

QVariant ShowTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    return role == Qt::DisplayRole && orientation == Qt::Horizontal ? m_headers.value(section) : QVariant();
}

} // namespace vantrel
