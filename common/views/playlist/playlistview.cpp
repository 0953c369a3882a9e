#include "common/views/playlist/playlistview.h"

#include "common/command/refusal.h"
#include "common/media/models/playlist/playlistmodel.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/dropnotice.h"
#include "common/views/playlist/playlistdelegate.h"

#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>
#include <array>
#include <set>

namespace vantrel {

using colors::getColor;

PlaylistView::PlaylistView(QWidget* parent)
    : QTableView(parent)
{
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setShowGrid(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setTabKeyNavigation(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_Hover);
    // Drags are the editor's: it knows what may be dropped, and the rows only where.
    setAcceptDrops(false);
    viewport()->setAcceptDrops(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    connect(verticalScrollBar(), &QScrollBar::sliderMoved, this, &PlaylistView::browsed);
    connect(verticalScrollBar(), &QScrollBar::actionTriggered, this, &PlaylistView::browsed);
}

QList<int> PlaylistView::selectedRows() const
{
    QList<int> rows;
    if (selectionModel()) {
        for (const QModelIndex& index : selectionModel()->selectedRows())
            rows.append(index.row());
    }
    std::ranges::sort(rows);
    return rows;
}

void PlaylistView::setDragSource(bool source)
{
    m_isDragSource = source;
    viewport()->update();
}

bool PlaylistView::isDragTarget(const QModelIndex& index) const
{
    return m_target.kind != DropTarget::Kind::None && index.isValid() && index.row() == m_target.row;
}

void PlaylistView::setDragTarget(int row)
{
    m_target.row = row;
    if (row < 0)
        m_target.kind = DropTarget::Kind::None;
    else if (m_target.kind == DropTarget::Kind::None)
        m_target.kind = DropTarget::Kind::Insert;
    viewport()->update();
}

void PlaylistView::setReplaceTarget(bool replace)
{
    m_target.kind = replace ? DropTarget::Kind::Replace : DropTarget::Kind::Insert;
    viewport()->update();
}

DropTarget PlaylistView::targetAt(const QPoint& position) const
{
    const int rows = model() ? model()->rowCount() : 0;
    const int top = rows > 0 ? rowViewportPosition(0) : 0;
    return DropGeometry(verticalHeader()->defaultSectionSize(), rows).targetAt(position.y() - top);
}

void PlaylistView::showTarget(const DropTarget& target, const QString& words)
{
    if (m_target == target && m_targetWords == words)
        return;
    m_target = target;
    m_targetWords = words;
    viewport()->update();
}

void PlaylistView::setPlaceholderText(const QString& text)
{
    m_placeholder = text;
    viewport()->update();
}

void PlaylistView::updateRowHeight(int pixels)
{
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(pixels);
    verticalScrollBar()->setSingleStep(pixels);
}

void PlaylistView::setEditable(bool editable)
{
    m_isEditable = editable;
    setEditTriggers(editable ? QAbstractItemView::EditTriggers(SelectedClicked) : NoEditTriggers);
}

int PlaylistView::findPrecedingEntry(const EntryAddress& address) const
{
    const auto* playlist = qobject_cast<const PlaylistModel*>(model());
    int found = -1;
    EntryAddress closest;
    for (int row = 0; playlist && row < playlist->rowCount(); ++row) {
        const EntryAddress at = playlist->getEntryAddress(playlist->index(row, 0));
        if (at <= address && (found < 0 || closest < at)) {
            found = row;
            closest = at;
        }
    }
    return found;
}

void PlaylistView::handleScrollPositionChanged(ScrollDirection direction)
{
    verticalScrollBar()->triggerAction(direction == ScrollDirection::Up
                                           ? QAbstractSlider::SliderSingleStepSub
                                           : QAbstractSlider::SliderSingleStepAdd);
}

void PlaylistView::updateSelection(uint playlist, const QList<EntryAddress>& addresses)
{
    const auto* list = qobject_cast<const PlaylistModel*>(model());
    if (!list || list->playlistNumber() != playlist || addresses.isEmpty() || !selectionModel())
        return;
    const std::set<EntryAddress> wanted(addresses.begin(), addresses.end());
    QItemSelection rows;
    const auto isWanted = [&](int row) {
        return row < list->rowCount() && wanted.contains(list->getEntryAddress(list->index(row, 0)));
    };
    // By runs: all that asks for the selection goes through its ranges.
    for (int row = 0; row < list->rowCount(); ++row) {
        const int first = row;
        while (isWanted(row))
            ++row;
        if (row > first)
            rows.select(list->getLeftmostIndex(first), list->getRightmostIndex(row - 1));
    }
    if (rows.isEmpty())
        return;
    const QModelIndex first = rows.first().topLeft();
    selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
    selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    scrollTo(first);
}

void PlaylistView::keyboardSearch(const QString& text)
{
    // Letters are hotkeys of the player; a number is that of an entry, and a point within it is no hotkey.
    const bool isPoint = text == QLatin1String(".") && !m_numberTyped.hasExpired();
    if (!text.at(0).isDigit() && !isPoint)
        return;
    m_numberTyped.setRemainingTime(QApplication::keyboardInputInterval());
    const QModelIndex current = currentIndex();
    if (current.isValid() && current.column() != 0 && selectionModel())
        selectionModel()->setCurrentIndex(current.siblingAtColumn(0), QItemSelectionModel::NoUpdate);
    QTableView::keyboardSearch(text);
}

bool PlaylistView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    // Without the wait for a second click that the trigger has by itself.
    const bool isClick = trigger == SelectedClicked && m_isEditable;
    return QTableView::edit(index, isClick ? AllEditTriggers : trigger, event);
}

void PlaylistView::editSelected(int column)
{
    const QList<int> rows = selectedRows();
    if (!m_isEditable || rows.isEmpty())
        return;
    const int current = rows.contains(currentIndex().row()) ? currentIndex().row() : rows.first();
    // A cut takes no time: another of the rows may.
    const auto cell = [&](int row) { return model()->index(row, column); };
    const auto canEdit = [&](int row) { return model()->flags(cell(row)).testFlag(Qt::ItemIsEditable); };
    const auto other = std::ranges::find_if(rows, canEdit);
    if (other == rows.end())
        return tellNotDone(tr("Edit playlist entries"),
                           tr("A direct cut takes no time. Choose another transition first."));
    const QModelIndex index = cell(canEdit(current) ? current : *other);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    scrollTo(index);
    m_opened = index;
    QTableView::edit(index);
}

/// Where a column has given way its editor stands over the name.
QRect PlaylistView::visualRect(const QModelIndex& index) const
{
    const bool isHidden = index.isValid() && index == m_opened && isColumnHidden(index.column());
    return QTableView::visualRect(isHidden ? index.siblingAtColumn(PlaylistModel::MediaColumn) : index);
}

QItemSelectionModel::SelectionFlags PlaylistView::selectionCommand(const QModelIndex& index,
                                                                   const QEvent* event) const
{
    // A value that is chosen is for all selected rows: the click that opens the editor leaves them selected.
    if (event && event->type() == QEvent::MouseButtonRelease && state() == EditingState)
        return QItemSelectionModel::NoUpdate;
    return QTableView::selectionCommand(index, event);
}

bool PlaylistView::handleHotkey(const QKeyEvent& event)
{
    static constexpr std::array actions{"cue",
                                        "delete",
                                        "rename",
                                        "move_entries_up",
                                        "move_entries_down",
                                        "insert_media",
                                        "insert_media_before",
                                        "replace_by_media",
                                        "edit_transition",
                                        "edit_transition_time",
                                        "edit_end_action",
                                        "list_order",
                                        "all_playlists",
                                        "renumber_entries",
                                        "copy",
                                        "cut",
                                        "paste"};
    const QKeySequence key = Hotkeys::pressed(event);
    if (key.isEmpty())
        return false;
    if (state() == EditingState) // what the editor leaves over, such as the Enter that ends it
        return true;
    const auto found = std::ranges::find_if(
        actions, [&key](const char* name) { return Hotkeys::current(QLatin1String(name)) == key; });
    if (found != actions.end()) {
        // Held down, a key moves entries on and on; nothing else is meant twice.
        const bool repeats = QLatin1String(*found).startsWith(QLatin1String("move_entries"));
        if (repeats || !event.isAutoRepeat())
            Q_EMIT actionRequested(QString::fromLatin1(*found));
        return true;
    }
    return key == QKeySequence(Qt::Key_Return); // nothing else where another key cues
}

void PlaylistView::keyPressEvent(QKeyEvent* event)
{
    if (handleHotkey(*event)) {
        event->accept();
        return;
    }
    Q_EMIT browsed();
    QTableView::keyPressEvent(event);
}

void PlaylistView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_pressed = indexAt(event->position().toPoint());
        m_pressedAt = event->position().toPoint();
    }
    QTableView::mousePressEvent(event);
}

void PlaylistView::mouseMoveEvent(QMouseEvent* event)
{
    if (!event->buttons().testFlag(Qt::LeftButton) || !m_pressed.isValid()) {
        QTableView::mouseMoveEvent(event);
        return;
    }
    const QPoint way = event->position().toPoint() - m_pressedAt;
    if (way.manhattanLength() < QApplication::startDragDistance())
        return;
    const QModelIndex index = m_pressed;
    m_pressed = QPersistentModelIndex();
    setState(NoState);
    Q_EMIT dragStarted(index);
}

bool PlaylistView::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && !m_numberTyped.hasExpired() &&
        static_cast<const QKeyEvent*>(event)->text() == QLatin1String(".")) {
        event->accept();
        return true;
    }
    const bool isMenuKey = event->type() == QEvent::ContextMenu &&
                           static_cast<QContextMenuEvent*>(event)->reason() == QContextMenuEvent::Keyboard;
    if (!isMenuKey || !currentIndex().isValid())
        return QTableView::event(event);
    // At the row that the keys go to.
    const QPoint below = visualRect(currentIndex()).bottomLeft();
    Q_EMIT customContextMenuRequested({below.x(), std::clamp(below.y(), 0, viewport()->height())});
    event->accept();
    return true;
}

void PlaylistView::wheelEvent(QWheelEvent* event)
{
    Q_EMIT browsed();
    QTableView::wheelEvent(event);
}

void PlaylistView::focusInEvent(QFocusEvent* event)
{
    QTableView::focusInEvent(event);
    // By Tab the keys need a row to begin with.
    if (model() && !currentIndex().isValid() && model()->rowCount() > 0 &&
        event->reason() != Qt::MouseFocusReason)
        selectionModel()->setCurrentIndex(model()->index(0, 0), QItemSelectionModel::NoUpdate);
}

bool PlaylistView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<const QHelpEvent*>(event);
        QToolTip::showText(help->globalPos(), tipFor(indexAt(help->pos())), this);
        return true;
    }
    return QTableView::viewportEvent(event);
}

QString PlaylistView::tipFor(const QModelIndex& index) const
{
    if (!index.isValid())
        return {};
    const auto cell = [&index](int column) { return index.siblingAtColumn(column).data().toString(); };
    QStringList lines{cell(PlaylistModel::NumberColumn) + u' ' + cell(PlaylistModel::MediaColumn),
                      tr("Transition: %1. At the end: %2")
                          .arg(cell(PlaylistModel::TransitionColumn), cell(PlaylistModel::EndActionColumn))};
    if (const QString faults = index.data(Qt::AccessibleDescriptionRole).toString(); !faults.isEmpty())
        lines.append(faults);
    const auto key = [](const char* name) { return keyText(Hotkeys::current(QLatin1String(name))); };
    if (m_isEditable) {
        lines.append(tr("Double-click or %1: cue it on preview. %2 and %3: move it. %4: remove it")
                         .arg(key("cue"), key("move_entries_up"), key("move_entries_down"), key("delete")));
        lines.append(tr("%1: its transition. %2: its time. %3: what happens at its end")
                         .arg(key("edit_transition"), key("edit_transition_time"), key("edit_end_action")));
    }
    for (QString& line : lines)
        line = line.toHtmlEscaped();
    return lines.join(QStringLiteral("<br>"));
}

void PlaylistView::paintEvent(QPaintEvent* event)
{
    QTableView::paintEvent(event);
    QPainter painter(viewport());
    if (!model() || model()->rowCount() == 0)
        paintPlaceholder(&painter);
    if (m_target.kind != DropTarget::Kind::None)
        paintTarget(&painter);
    else if (!m_targetWords.isEmpty())
        paintDropNotice(painter, viewport()->rect(), DropNotice::OnAir, font(), m_targetWords);
}

void PlaylistView::paintTarget(QPainter* painter)
{
    const int rows = model() ? model()->rowCount() : 0;
    const int height = verticalHeader()->defaultSectionSize();
    const int top = rows > 0 ? rowViewportPosition(0) : 0;
    const int width = viewport()->width();
    const QRect place = m_target.isReplace()
                            ? QRect(0, top + m_target.row * height, width, height)
                            : QRect(0, top + DropGeometry(height, rows).lineOf(m_target), width, 0);
    PlaylistDelegate::drawDragAndDropTarget(painter, place, viewport()->rect(), font(), m_targetWords);
}

void PlaylistView::paintPlaceholder(QPainter* painter)
{
    const QFontMetrics metrics(font());
    QRect box = viewport()->rect().adjusted(spacing::wide, spacing::normal, -spacing::wide, -spacing::normal);
    const QRect text = metrics.boundingRect(box, Qt::AlignCenter | Qt::TextWordWrap, m_placeholder);
    const int side = metrics.height() * 2;
    if (box.height() >= text.height() + side + spacing::normal) {
        const int top = box.center().y() - (text.height() + side + spacing::normal) / 2;
        painter->drawPixmap(box.center().x() - side / 2, top,
                            IconCache::pixmap(QStringLiteral("playlist"), getColor(colors::Zt_white_30),
                                              QSize(side, side), devicePixelRatioF()));
        box.setTop(top + side + spacing::normal);
        painter->setPen(getColor(colors::Zt_white_70));
        painter->drawText(box, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, m_placeholder);
        return;
    }
    painter->setPen(getColor(colors::Zt_white_70));
    painter->drawText(box, Qt::AlignCenter | Qt::TextWordWrap, m_placeholder);
}

} // namespace vantrel
