#include "common/views/slotlistview.h"

#include "common/media/models/medialibrarymodel.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/iconcache.h"
#include "common/views/mediapanelmodel.h"
#include "common/views/slotdelegate.h"
#include "common/views/slotdrops.h"
#include "common/views/slotplace.h"
#include "tarn/media/medialibrary.h"

#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace vantrel {

using colors::getColor;

namespace {

/// Of the place, as a drop takes it.
QString numbersOf(const SlotPlace& taken, const DropForecast& forecast)
{
    return forecast.isExact ? taken.numbers() : SlotListView::tr("from %1").arg(taken.first);
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
    if (m_gap >= 0) {
        const int rows = model()->rowCount(rootIndex());
        const QRect row = visualRect(model()->index(std::min(m_gap, rows - 1), modelColumn(), rootIndex()));
        QPainter painter(viewport());
        painter.fillRect(row.left(), (m_gap < rows ? row.top() : row.bottom() + 1) - 1, row.width(), 2,
                         getColor(colors::Zt_orange));
    }
    if (m_drops && m_drops->isTaking()) {
        QPainter painter(viewport());
        paintPlaces(painter);
    }
    if (m_target >= 0 && m_drops)
        paintDrop();
    if (m_emptyText.isEmpty() || m_target >= 0 || (model() && model()->rowCount(rootIndex()) > 0))
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
        const QModelIndex index = indexAt(help->pos());
        const QString text = index.data(Qt::ToolTipRole).toString();
        if (index.isValid() && isPlace(index.row())) {
            QToolTip::showText(help->globalPos(), text, this);
            return true;
        }
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
    if (is("move_slots")) {
        if (!event.isAutoRepeat())
            Q_EMIT moveSelectedRequested();
        return true;
    }
    if (is("copy") || is("cut")) {
        Q_EMIT copyRequested(is("cut"));
        return true;
    }
    if (is("paste")) {
        if (!event.isAutoRepeat())
            Q_EMIT pasteRequested();
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

/// A place takes a row of our own as it takes anything else.
bool SlotListView::isOwnMove(const QDropEvent* event) const
{
    const QModelIndex under = indexAt(event->position().toPoint());
    return isOwnRow(event) && !(m_drops && under.isValid() && isPlace(under.row()));
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

int SlotListView::slotAt(int row) const
{
    return model()->index(row, modelColumn(), rootIndex()).data(MediaLibraryModel::NumberRole).toInt();
}

bool SlotListView::isPlace(int row) const
{
    return !model()
                ->index(row, modelColumn(), rootIndex())
                .data(MediaPanelModel::PlaceRole)
                .toString()
                .isEmpty();
}

int SlotListView::lastOf(int row) const
{
    return isPlace(row)
               ? model()->index(row, modelColumn(), rootIndex()).data(MediaPanelModel::PlaceLastRole).toInt()
               : slotAt(row);
}

/// On a row that slot, or the first of that place; between two rows and below all of them where there is room
/// behind the row above.
int SlotListView::slotUnder(const QPoint& position) const
{
    const int rows = model() ? model()->rowCount(rootIndex()) : 0;
    const auto behind = [this](int row) {
        return m_drops->roomFrom(row < 0 ? 1 : isPlace(row) ? slotAt(row) : slotAt(row) + 1);
    };
    const QModelIndex index = indexAt(position);
    if (!index.isValid())
        return behind(rows - 1);
    if (isPlace(index.row()))
        return slotAt(index.row());
    const QRect row = visualRect(index);
    const int edge = row.height() / 4;
    if (position.y() > row.bottom() - edge)
        return behind(index.row());
    if (position.y() < row.top() + edge)
        return behind(index.row() - 1);
    return slotAt(index.row());
}

/// The free slots behind the last one are a place too; while something is dragged there it says what of it
/// that takes.
void SlotListView::paintPlaces(QPainter& painter)
{
    const int rows = model() ? model()->rowCount(rootIndex()) : 0;
    const QModelIndex last = rows > 0 ? model()->index(rows - 1, modelColumn(), rootIndex()) : QModelIndex();
    const QRect above = visualRect(last);
    const int height = last.isValid() ? above.height() : 0;
    if (height <= 0)
        return;
    const int next = slotAt(rows - 1) + 1;
    const bool isAimed = m_target >= next && m_drops->aim(m_target).isPossible();
    const auto* shown = qobject_cast<const MediaPanelModel*>(model());
    const bool isWhole = shown && shown->searchText().isEmpty(); // else it hides what it holds
    if (!isAimed && (!isWhole || next > MediaCollection::slotIndexMax))
        return;
    SlotPlace place{.first = next, .last = MediaCollection::slotIndexMax};
    if (isAimed)
        place = {.first = m_drops->aim(m_target).first, .last = m_drops->aim(m_target).last};
    QString text = isAimed ? numbersOf(place, m_drops->aim(m_target)) : place.text();
    const QString whole = text + QStringLiteral("  –  ") + SlotPlace::hint();
    const int margins = 2 * height / 3;
    if (!isAimed && fontMetrics().horizontalAdvance(whole) + margins <= above.width())
        text = whole;
    SlotDelegate::paintPlace(&painter, above.translated(0, height), font(), text, isAimed);
}

void SlotListView::paintAimedPlace(QPainter& painter, int row, const DropForecast& forecast) const
{
    const QModelIndex index = model()->index(row, modelColumn(), rootIndex());
    const SlotPlace taken{.first = std::max(slotAt(row), forecast.first),
                          .last = std::min(lastOf(row), forecast.last)};
    painter.fillRect(visualRect(index), getColor(colors::Slate_grey_800)); // over what it says while it rests
    SlotDelegate::paintPlace(&painter, visualRect(index), font(), numbersOf(taken, forecast), true);
}

/// The rows that a drop would take, the line where it lands, and what it does, in words.
void SlotListView::paintDrop()
{
    const DropForecast& forecast = m_drops->aim(m_target);
    QPainter painter(viewport());
    const QFontMetrics metrics(font());
    const int rows = model() ? model()->rowCount(rootIndex()) : 0;
    int line = 1;
    if (forecast.isPossible()) {
        for (int row = std::max(0, indexAt(QPoint(1, 1)).row()); row < rows; ++row) {
            const QRect rect = visualRect(model()->index(row, modelColumn(), rootIndex()));
            if (rect.top() > viewport()->height())
                break;
            const int slot = slotAt(row);
            if (lastOf(row) < forecast.first)
                line = rect.bottom() + 1;
            else if (slot <= forecast.last && rect.bottom() >= 0 && isPlace(row))
                paintAimedPlace(painter, row, forecast);
            else if (slot <= forecast.last && rect.bottom() >= 0)
                painter.fillRect(rect, getColor(colors::Zt_red_10));
        }
        line = std::min(line, viewport()->height() - 1);
        painter.fillRect(0, line - 1, viewport()->width(), 2, getColor(colors::Zt_orange));
    }
    const int margin = 8;
    const QRect room = viewport()->rect().adjusted(margin, margin, -margin, -margin);
    QRect box = metrics.boundingRect(room, Qt::AlignLeft | Qt::TextWordWrap, forecast.text());
    box = QRect(0, 0, viewport()->width(), box.height() + 2 * margin);
    if (line < viewport()->height() / 2) // it must not lie over the line that it speaks of
        box.moveBottom(viewport()->rect().bottom());
    painter.fillRect(box, getColor(colors::Slate_grey_900));
    painter.fillRect(
        box.left(), box.top(), 3, box.height(),
        getColor(!forecast.isPossible() || forecast.overwritten > 0 ? colors::Red_red : colors::Zt_orange));
    painter.setPen(getColor(colors::White));
    painter.drawText(box.adjusted(margin + 3, margin, -margin, -margin), Qt::AlignLeft | Qt::TextWordWrap,
                     forecast.text());
}

void SlotListView::dragEnterEvent(QDragEnterEvent* event)
{
    const bool isOurs = m_drops && m_drops->begin(event->mimeData());
    event->setAccepted(isOurs || isOwnRow(event));
}

void SlotListView::dragMoveEvent(QDragMoveEvent* event)
{
    const QPoint position = event->position().toPoint();
    if (isOwnMove(event)) {
        event->accept();
        m_target = -1;
        showGap(gapAt(position));
        return;
    }
    showGap(-1);
    m_target = m_drops ? slotUnder(position) : -1;
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(m_drops != nullptr); // what cannot be dropped says why at the drop, too
    viewport()->update();
}

void SlotListView::dragLeaveEvent(QDragLeaveEvent* event)
{
    endDrag();
    QListView::dragLeaveEvent(event);
}

void SlotListView::endDrag()
{
    showGap(-1);
    m_target = -1;
    if (m_drops)
        m_drops->end();
    viewport()->update();
}

void SlotListView::dropEvent(QDropEvent* event)
{
    // A copy to the drag: the row goes where it goes when the server says so, never by the view's own hand.
    event->setDropAction(Qt::CopyAction);
    const QPoint position = event->position().toPoint();
    if (isOwnMove(event)) {
        event->accept();
        endDrag();
        Q_EMIT moveRequested(selectionModel()->selectedIndexes().first(), gapAt(position));
        return;
    }
    event->setAccepted(m_drops != nullptr);
    if (m_drops)
        m_drops->drop(slotUnder(position));
    endDrag();
}

} // namespace vantrel
