#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QStringList>

namespace vantrel {

/// Rows of texts about what a server keeps, each with what the server calls it. Owned by its dialog; main
/// thread.
class ShowTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    struct Row
    {
        QString id;
        QStringList cells;
        QString fault; // a sentence where it cannot be used: it stands there dim
    };

    ShowTableModel(QStringList headers, QObject* parent);

    void setRows(QList<Row> rows);
    const QList<Row>& rows() const { return m_rows; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    QStringList m_headers;
    QList<Row> m_rows;
};

} // namespace vantrel
