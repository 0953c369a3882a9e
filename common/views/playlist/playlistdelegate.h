#pragma once

#include "common/views/playlist/listclock.h"
#include "tarn/media/channelenums.h"

#include <QSet>
#include <QStyledItemDelegate>

class QAbstractItemView;

namespace vantrel {

class PlaylistModel;

/// Paints the cells of a playlist and makes the editors of those that can be edited. What is chosen in one
/// goes to all selected rows at once. Owned by PlaylistContainer; main thread.
class PlaylistDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// modes: the channels whose list this is; the first of them colours what plays.
    PlaylistDelegate(const QSet<PlaybackViewMode>& modes, bool editable, QAbstractItemView* view);

    /// Program's clock, by which entries are marked as on air and as next; null for none.
    void setClock(const ListClock* clock) { m_clock = clock; }
    /// Whether end action and transition are told by their icons alone.
    void setCompact(bool compact) { m_isCompact = compact; }
    /// While the rows run past, pictures and states are not asked for.
    void setFetching(bool fetching) { m_fetching = fetching; }
    int rowHeight(const QFont& font) const;
    /// The width, in pixels, that a column's cells need at the most, whatever rows there are; the rows that
    /// are seen decide where a text has no bound.
    int columnWidth(const PlaylistModel* model, int column, const QFont& font) const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

    /// A frame round the place, or a line where it has no height, and the words on a label beside it, all
    /// within the area.
    static void drawDragAndDropTarget(QPainter* painter, const QRect& place, const QRect& area,
                                      const QFont& font, const QString& words);

private:
    struct Cell;
    bool isProgram() const { return m_modes.contains(Program); }
    void paintRow(const Cell& cell) const;
    void paintText(const Cell& cell, const QString& text, Qt::Alignment alignment, bool dim) const;
    void paintIcon(const Cell& cell, const QString& icon, const QColor& colour) const;
    void paintChoice(const Cell& cell, const QString& icon, const QString& text) const;
    void paintState(const Cell& cell) const;
    void paintName(const Cell& cell) const;
    void paintThumbnail(const Cell& cell) const;
    void paintDuration(const Cell& cell) const;
    void paintLast(const Cell& cell) const;
    void finishEditing(QWidget* editor);
    /// Writes the value to all rows that are selected, or to the one alone.
    void setSelectedData(QAbstractItemModel* model, const QModelIndex& index, const QVariant& value) const;

    QAbstractItemView* m_view;
    QSet<PlaybackViewMode> m_modes;
    bool m_isEditable;
    bool m_isCompact = false;
    bool m_fetching = true;
    const ListClock* m_clock = nullptr;
};

} // namespace vantrel
