#pragma once

#include <QStyledItemDelegate>

#include <utility>

namespace vantrel {

class MediaArrivals;

/// Paints a row of the media panel: number, picture, name, length, and what plays where. Heights follow the
/// text size. Owned by its view.
class SlotDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Off while rows fly past: what is not known yet is then not asked for.
    void setFetching(bool fetching) { m_fetching = fetching; }

    /// What is on its way into the slots, which then say how far it is; null for nothing.
    void setArrivals(const MediaArrivals* arrivals) { m_arrivals = arrivals; }

    /// Shows the marks of the channels without their colours: they are the last that was known. False when
    /// that is nothing new.
    bool setStale(bool stale) { return std::exchange(m_stale, stale) != stale; }

    /// Where slots hold nothing: the text within dashes, brighter where a drop is about to land.
    static void paintPlace(QPainter* painter, const QRect& row, const QFont& font, const QString& text,
                           bool isAimed);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

    /// Where number, name and what stands below it are written, in the row's own view.
    QList<QRect> textPlaces(const QStyleOptionViewItem& option, const QModelIndex& index) const;

private:
    struct Layout;
    Layout layoutOf(const QStyleOptionViewItem& option, const QModelIndex& index) const;

    const MediaArrivals* m_arrivals = nullptr;
    bool m_fetching = true;
    bool m_stale = false;
};

} // namespace vantrel
