#include "common/views/playlist/playlistheader.h"

#include "common/media/models/playlist/playlistmodel.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/iconcache.h"

#include <QAbstractItemModel>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace vantrel {

using colors::getColor;

namespace {

constexpr int margin = 6; // that of the cells

/// Whose cells stand at the right, as numbers do.
bool isNumeric(int section)
{
    using Column = PlaylistModel::Column;
    return section == Column::NumberColumn || section == Column::DurationColumn ||
           section == Column::TransitionDurationColumn || section == Column::SizeColumn;
}

} // namespace

PlaylistHeader::PlaylistHeader(QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent)
{
    setSectionsClickable(true);
    setHighlightSections(false);
    setSortIndicatorShown(false); // drawn here, where it takes no room
    setMinimumSectionSize(1);
    setFocusPolicy(Qt::NoFocus);
    setMouseTracking(true);
    // The mark may stand over another column.
    connect(this, &QHeaderView::sortIndicatorChanged, this, [this] { viewport()->update(); });
}

void PlaylistHeader::setTitle(int section, const QString& title)
{
    m_titles.insert(section, title);
}

QString PlaylistHeader::titleOf(int section) const
{
    return m_titles.value(section, model()->headerData(section, Qt::Horizontal).toString());
}

/// The column that shows the order, where it is not that of the list; -1 where it is. A column that has given
/// way lends its mark to the name.
int PlaylistHeader::markedSection() const
{
    const int sorted = sortIndicatorSection();
    if (sorted < 0 || sorted >= count() ||
        (sorted == PlaylistModel::NumberColumn && sortIndicatorOrder() == Qt::AscendingOrder))
        return -1;
    return isSectionHidden(sorted) ? int(PlaylistModel::MediaColumn) : sorted;
}

bool PlaylistHeader::hasRoom(int section, const QString& title) const
{
    return fontMetrics().horizontalAdvance(title) <= sectionSize(section) - margin;
}

void PlaylistHeader::paintSection(QPainter* painter, const QRect& rect, int section) const
{
    painter->save();
    painter->fillRect(rect.left(), rect.bottom(), rect.width(), 1, getColor(colors::Zt_white_15));
    const bool isSorted = markedSection() == section;
    QString title = titleOf(section);
    if (isSorted && sortIndicatorSection() != section) {
        const QString sorted = titleOf(sortIndicatorSection());
        const QString whole = tr("%1, sorted by %2").arg(title, sorted);
        title = hasRoom(section, whole) ? whole : tr("By %1").arg(sorted);
    }
    if (!title.isEmpty() && hasRoom(section, title)) {
        const bool isNumber = isNumeric(section);
        painter->setFont(font());
        painter->setPen(getColor(isSorted ? colors::Zt_orange : colors::Zt_white_70));
        painter->drawText(rect.adjusted(margin, 0, -margin, 0),
                          Qt::AlignVCenter | (isNumber ? Qt::AlignRight : Qt::AlignLeft), title);
    }
    if (isSorted) {
        // A list in another order than it plays in must be seen to be one.
        const int side = 8;
        const QString arrow = sortIndicatorOrder() == Qt::AscendingOrder ? QStringLiteral("chevron_up")
                                                                         : QStringLiteral("chevron_down");
        painter->drawPixmap(
            rect.right() - side, rect.top() + 2,
            IconCache::pixmap(arrow, getColor(colors::Zt_orange), QSize(side, side), devicePixelRatioF()));
    }
    painter->restore();
}

bool PlaylistHeader::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const int section = logicalIndexAt(help->pos());
        const QString title = section >= 0 ? titleOf(section) : QString();
        QToolTip::showText(help->globalPos(), title.isEmpty() ? title : tr("%1: click to sort").arg(title),
                           this);
        return true;
    }
    return QHeaderView::viewportEvent(event);
}

} // namespace vantrel
