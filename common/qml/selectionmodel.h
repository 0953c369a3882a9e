#pragma once

#include <QItemSelectionModel>
#include <QList>
#include <QSet>

#include <optional>

namespace vantrel {

/// What is selected in a declarative list, by mouse and keyboard as any list has it. A model that begins anew
/// (one that was sorted, say) gets its selection back by the names of its rows. The view owns it; main thread
/// only.
class SelectionModel : public QItemSelectionModel
{
    Q_OBJECT
    Q_PROPERTY(QAbstractItemModel* rowModel READ rowModel WRITE setRowModel NOTIFY rowModelChanged)
    /// Grows with every change: what asks isRowSelected() binds to it.
    Q_PROPERTY(int revision READ revision NOTIFY revisionChanged)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY revisionChanged)
    Q_PROPERTY(int currentRow READ currentRow NOTIFY revisionChanged)

public:
    explicit SelectionModel(QObject* parent = nullptr);

    QAbstractItemModel* rowModel() const { return m_rowModel; }
    void setRowModel(QAbstractItemModel* model);
    int revision() const { return m_revision; }
    int selectedCount() const;
    int currentRow() const { return currentIndex().row(); }

    Q_INVOKABLE bool isRowSelected(int row) const;
    /// Ascending.
    Q_INVOKABLE QList<int> rows() const;
    /// What a press on the row, or an arrow that leads to it, does with the modifiers that are held.
    Q_INVOKABLE void pick(int row, int modifiers);
    /// Makes the row the current one and leaves the selection as it is.
    Q_INVOKABLE void moveTo(int row);
    Q_INVOKABLE void toggle(int row);
    Q_INVOKABLE void selectAll();

Q_SIGNALS:
    void revisionChanged();
    void rowModelChanged();

private:
    void follow(QAbstractItemModel* model);
    void keepNames();
    void restoreNames();
    void touch();
    QModelIndex at(int row) const;
    bool isSelectable(int row) const;
    QList<int> readRows() const;

    QAbstractItemModel* m_rowModel = nullptr;
    int m_anchor = -1; // where a range begins
    int m_revision = 0;
    QSet<QString> m_names;
    QString m_currentName;
    mutable std::optional<QList<int>> m_rows; // worked out once for each change, of thousands
};

} // namespace vantrel
