#include "common/views/slotlistview.h"

#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/iconcache.h"

#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

namespace vantrel {

using colors::getColor;

SlotListView::SlotListView(QWidget* parent)
    : QListView(parent)
{
    setUniformItemSizes(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers); // its key is in the key map
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(false); // our own stands between the rows
    viewport()->setAttribute(Qt::WA_Hover);
}

void SlotListView::setEmpty(const QString& icon, const QString& text)
{
    if (m_emptyText == text && m_emptyIcon == icon)
        return;
    m_emptyIcon = icon;
    m_emptyText = text;
    viewport()->update();
}

void SlotListView::paintEvent(QPaintEvent* event)
{
    QListView::paintEvent(event);
    if (m_gap >= 0) {
        const int rows = model()->rowCount(rootIndex());
        const QRect row = visualRect(model()->index(std::min(m_gap, rows - 1), modelColumn(), rootIndex()));
        QPainter painter(viewport());
        painter.fillRect(row.left(), (m_gap < rows ? row.top() : row.bottom() + 1) - 1, row.width(), 2,
                         getColor(colors::Zt_orange));
    }
    if (m_emptyText.isEmpty() || (model() && model()->rowCount(rootIndex()) > 0))
        return;
    QPainter painter(viewport());
    const QFontMetrics metrics(font());
    const int side = metrics.height() * 2;
    QRect box = viewport()->rect().adjusted(16, 16, -16, -16);
    const QRect text = metrics.boundingRect(box, Qt::AlignHCenter | Qt::TextWordWrap, m_emptyText);
    const int top = std::max(box.top(), box.center().y() - (side + 12 + text.height()) / 2);
    painter.drawPixmap(box.center().x() - side / 2, top,
                       IconCache::pixmap(m_emptyIcon, getColor(colors::Zt_white_50), QSize(side, side),
                                         devicePixelRatioF()));
    box.setTop(top + side + 12);
    painter.setPen(getColor(colors::Zt_white_70));
    painter.drawText(box, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, m_emptyText);
}

void SlotListView::keyboardSearch(const QString& text)
{
    // Letters are hotkeys of the player; a number is the name of a slot.
    if (text.at(0).isDigit())
        Q_EMIT textTyped(text);
}

bool SlotListView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        const QString text = indexAt(help->pos()).data(Qt::ToolTipRole).toString();
        const QString keys = tr("Double-click or %1: cue it on preview. %2: add it to the playlist")
                                 .arg(keyText(Hotkeys::current(QStringLiteral("cue"))),
                                      keyText(Hotkeys::current(QStringLiteral("insert_media"))));
        QToolTip::showText(help->globalPos(),
                           text.isEmpty()
                               ? text
                               : text + QStringLiteral("<p>") + keys.toHtmlEscaped() + QStringLiteral("</p>"),
                           this);
        return true;
    }
    return QListView::viewportEvent(event);
}

bool SlotListView::handleHotkey(const QKeyEvent& event)
{
    const QKeySequence key = Hotkeys::pressed(event);
    if (key.isEmpty())
        return false;
    if (state() == EditingState) // what the editor leaves over, such as the Enter that ends it
        return true;
    const auto is = [&key](const char* name) { return Hotkeys::current(QLatin1String(name)) == key; };
    // Held down, none of them is meant twice.
    if (is("insert_media")) {
        if (!event.isAutoRepeat())
            Q_EMIT insertRequested();
        return true;
    }
    if (is("delete")) {
        if (!event.isAutoRepeat())
            Q_EMIT deleteRequested();
        return true;
    }
    if (is("rename"))
        return edit(currentIndex(), AllEditTriggers, nullptr);
    if (is("cue") && currentIndex().isValid() && !event.isAutoRepeat())
        Q_EMIT activated(currentIndex());
    // Enter does nothing else where another key cues.
    return is("cue") || key == QKeySequence(Qt::Key_Return);
}

void SlotListView::keyPressEvent(QKeyEvent* event)
{
    if (handleHotkey(*event))
        event->accept();
    else
        QListView::keyPressEvent(event);
}

void SlotListView::changeEvent(QEvent* event)
{
    QListView::changeEvent(event);
    // The one height that all rows share is the text's.
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        scheduleDelayedItemsLayout();
}

bool SlotListView::isOwnRow(const QDropEvent* event) const
{
    return event->source() == this && selectionModel() && selectionModel()->selectedIndexes().size() == 1;
}

int SlotListView::gapAt(const QPoint& position) const
{
    const QModelIndex index = indexAt(position);
    if (!index.isValid())
        return model()->rowCount(rootIndex());
    return position.y() < visualRect(index).center().y() ? index.row() : index.row() + 1;
}

void SlotListView::showGap(int row)
{
    if (m_gap == row)
        return;
    m_gap = row;
    viewport()->update();
}

void SlotListView::dragEnterEvent(QDragEnterEvent* event)
{
    event->setAccepted(isOwnRow(event));
}

void SlotListView::dragMoveEvent(QDragMoveEvent* event)
{
    event->setAccepted(isOwnRow(event));
    showGap(event->isAccepted() ? gapAt(event->position().toPoint()) : -1);
}

void SlotListView::dragLeaveEvent(QDragLeaveEvent* event)
{
    showGap(-1);
    QListView::dragLeaveEvent(event);
}

void SlotListView::dropEvent(QDropEvent* event)
{
    showGap(-1);
    if (!isOwnRow(event))
        return;
    // A copy to the drag: the row goes where it goes when the server says so, never by the view's own hand.
    event->setDropAction(Qt::CopyAction);
    event->accept();
    Q_EMIT moveRequested(selectionModel()->selectedIndexes().first(), gapAt(event->position().toPoint()));
}

} // namespace vantrel
