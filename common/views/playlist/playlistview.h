#pragma once

#include "common/views/playlist/droptarget.h"
#include "tarn/media/entryaddress.h"

#include <QDeadlineTimer>
#include <QList>
#include <QPersistentModelIndex>
#include <QTableView>

namespace vantrel {

/// Which way a drag at the edge scrolls a list.
enum class ScrollDirection : int { Up = -1, Down = 1 };

/// The rows of a playlist, all of one height. It finds the drop target and shows it, says what to do while it
/// is empty, and tells of the keys of the key map that mean entries; what is done about them is the editor's.
/// Owned by PlaylistContainer; main thread.
class PlaylistView : public QTableView
{
    Q_OBJECT

public:
    explicit PlaylistView(QWidget* parent = nullptr);

    /// The rows that are selected, ascending.
    QList<int> selectedRows() const;
    bool isDragSource() const { return m_isDragSource; }
    void setDragSource(bool source);
    bool isDragTarget(const QModelIndex& index) const;
    /// The row that a drop would replace, or behind which it would go; -1 for none, or in front of the first.
    void setDragTarget(int row);
    bool isReplaceTarget() const { return m_target.isReplace(); }
    void setReplaceTarget(bool replace);

    /// The drop target at a point of the viewport.
    DropTarget targetAt(const QPoint& position) const;
    const DropTarget& dropTarget() const { return m_target; }
    /// Shows where a drop would go and, in words, what it would do there. Words without a place stand over
    /// the whole list, in red: such a drop goes on air.
    void showTarget(const DropTarget& target, const QString& words);

    const QString& placeholderText() const { return m_placeholder; }
    void setPlaceholderText(const QString& text);
    void updateRowHeight(int pixels);
    /// Cells that open their editors at a click on a selected row.
    void setEditable(bool editable);

    /// The row of the entry itself or of the last in front of it, by number; -1 where there is none.
    int findPrecedingEntry(const EntryAddress& address) const;

    QRect visualRect(const QModelIndex& index) const override;
    void keyboardSearch(const QString& text) override;

public Q_SLOTS:
    void handleScrollPositionChanged(vantrel::ScrollDirection direction);
    /// Selects the entries, where the list is this one, and brings the first into view.
    /// Opens the editor of that column, for all selected rows.
    void editSelected(int column);
    void updateSelection(uint playlist, const QList<vantrel::EntryAddress>& addresses);

Q_SIGNALS:
    void dragStarted(QModelIndex index);
    /// A key of the key map was pressed: "cue", "delete", "move_entries_up" and so on.
    void actionRequested(QString action);
    /// The operator scrolls, or goes through the rows.
    void browsed();

protected:
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    bool handleHotkey(const QKeyEvent& event);
    /// All of a row that its cells may have no room for, and its keys.
    QString tipFor(const QModelIndex& index) const;
    void paintTarget(QPainter* painter);
    void paintPlaceholder(QPainter* painter);

    bool m_isDragSource = false;
    bool m_isEditable = false;
    DropTarget m_target;
    QString m_targetWords;
    QString m_placeholder;
    QPersistentModelIndex m_opened; // the cell whose editor a key has opened
    QPersistentModelIndex m_pressed;
    QPoint m_pressedAt;
    QDeadlineTimer m_numberTyped; // until what is typed begins another number
};

} // namespace vantrel
