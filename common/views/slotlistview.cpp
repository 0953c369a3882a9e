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
#include <QMimeData>
#include <QPainter>
#include <QToolTip>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace vantrel {

using colors::getColor;

namespace {

/// Files of this computer, or one of the file browsers' offers, of which it is not known how many it holds.
qsizetype offeredCount(const QMimeData* data)
{
    if (data->hasFormat(QStringLiteral("application/json")) &&
        data->data(QStringLiteral("application/type")) == "media")
        return 1;
    const QList<QUrl> urls = data->urls();
    const bool areFiles = std::ranges::all_of(urls, [](const QUrl& url) { return url.isLocalFile(); });
    return areFiles ? urls.size() : 0;
}

} // namespace

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
    if (m_gap >= 0 && model()) {
        QPainter painter(viewport());
        paintGap(painter);
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

/// A line where a drop would go, around all of it while it is empty, and in words what it would do.
void SlotListView::paintGap(QPainter& painter) const
{
    const int rows = model()->rowCount(rootIndex());
    const QColor accent = getColor(colors::Zt_orange);
    int y = viewport()->height() / 2;
    if (rows == 0) {
        painter.setPen(QPen(accent, 2));
        painter.drawRoundedRect(viewport()->rect().adjusted(1, 1, -2, -2), 4, 4);
    } else {
        const QRect row = visualRect(model()->index(std::min(m_gap, rows - 1), modelColumn(), rootIndex()));
        y = std::clamp(m_gap < rows ? row.top() : row.bottom() + 1, 1, viewport()->height() - 1);
        painter.fillRect(row.left(), y - 1, row.width(), 2, accent);
    }
    if (m_dropText.isEmpty())
        return;
    const QFontMetrics metrics(font());
    const int width = std::min(metrics.horizontalAdvance(m_dropText) + 16, viewport()->width());
    QRect box(0, y + 3, width, metrics.height() + 6);
    if (box.bottom() >= viewport()->height())
        box.moveBottom(y - 4);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent);
    painter.drawRoundedRect(box, 4, 4);
    painter.setPen(getColor(colors::Slate_grey_900));
    painter.drawText(box, Qt::AlignCenter, metrics.elidedText(m_dropText, Qt::ElideRight, width - 8));
}

void SlotListView::showDrop(int row, const QString& text)
{
    m_gap = row;
    m_dropText = text;
    viewport()->update();
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

void SlotListView::dragEnterEvent(QDragEnterEvent* event)
{
    aim(event);
}

void SlotListView::dragMoveEvent(QDragMoveEvent* event)
{
    QListView::dragMoveEvent(event); // scrolls at the edges
    aim(event);
}

void SlotListView::aim(QDropEvent* event)
{
    const qsizetype count = m_takesMedia && model() ? offeredCount(event->mimeData()) : 0;
    const bool isOwn = isOwnRow(event);
    event->setAccepted(isOwn || count > 0);
    if (count > 0)
        event->setDropAction(Qt::CopyAction);
    const int aimed = event->isAccepted() ? gapAt(event->position().toPoint()) : -1;
    if (std::exchange(m_aimed, aimed) == aimed)
        return;
    if (isOwn || aimed < 0)
        showDrop(aimed, {});
    else
        Q_EMIT dropAimed(count, aimed);
}

void SlotListView::dragLeaveEvent(QDragLeaveEvent* event)
{
    m_aimed = -1;
    showDrop(-1, {});
    QListView::dragLeaveEvent(event);
}

void SlotListView::dropEvent(QDropEvent* event)
{
    m_aimed = -1;
    showDrop(-1, {});
    const int gap = model() ? gapAt(event->position().toPoint()) : 0;
    const bool isOwn = isOwnRow(event);
    if (!isOwn && !(m_takesMedia && model() && offeredCount(event->mimeData()) > 0))
        return;
    // A copy to the drag: the row goes where it goes when the server says so, never by the view's own hand.
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (isOwn)
        Q_EMIT moveRequested(selectionModel()->selectedIndexes().first(), gap);
    else
        Q_EMIT mediaDropped(event->mimeData(), gap);
}

} // namespace vantrel
