#include "common/views/playlist/playlistcontainer.h"

#include "common/media/models/playlist/playlistmodel.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/uncovered.h"
#include "common/views/playlist/listclock.h"
#include "common/views/playlist/playlistdelegate.h"
#include "common/views/playlist/playlistheader.h"
#include "common/views/playlist/playlistview.h"

#include <QEvent>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace vantrel {

namespace {

using Column = PlaylistModel::Column;

constexpr int scrollRestMs = 120;  // until pictures are asked for
constexpr int browseRestMs = 8000; // until a list that was scrolled by hand follows what plays again

/// As they stand on the screen.
constexpr std::array columnOrder{Column::NumberColumn,
                                 Column::StateColumn,
                                 Column::ThumbnailColumn,
                                 Column::MediaColumn,
                                 Column::DurationColumn,
                                 Column::TransitionColumn,
                                 Column::TransitionDurationColumn,
                                 Column::EndActionColumn,
                                 Column::SizeColumn};

/// What gives way where there is no room for all, in this order, after the words of those that have icons.
/// On program the last column tells when an entry is over, which nothing else does.
using Dispensable = std::array<Column, 3>;
constexpr Dispensable dispensableOnPreview{Column::SizeColumn, Column::ThumbnailColumn,
                                           Column::TransitionDurationColumn};
constexpr Dispensable dispensableOnProgram{Column::TransitionDurationColumn, Column::TransitionColumn,
                                           Column::ThumbnailColumn};

} // namespace

PlaylistContainer::PlaylistContainer(const QSet<PlaybackViewMode>& modes, bool editable, QWidget* parent)
    : ZTFrame(parent)
    , m_modes(modes)
    , m_isEditable(editable)
    , m_view(new PlaylistView(this))
    , m_header(new PlaylistHeader(m_view))
    , m_delegate(new PlaylistDelegate(modes, editable, m_view))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);
    setFocusProxy(m_view);
    m_view->setHorizontalHeader(m_header);
    m_view->setItemDelegate(m_delegate);
    m_view->setEditable(editable);
    m_view->viewport()->installEventFilter(this); // the scroll bar takes room as well
    keepUncovered(m_view->viewport(), [this] { return timesArea(); });
    if (modes.contains(Program))
        m_header->setTitle(Column::SizeColumn, tr("Ends"));
    m_header->setTitle(Column::TransitionDurationColumn, tr("Time"));
    m_header->setTitle(Column::StateColumn, {});
    connect(m_view, &QAbstractItemView::doubleClicked, this, &PlaylistContainer::entryDoubleClick);
    connect(m_view, &PlaylistView::dragStarted, this, &PlaylistContainer::entryDragStarted);
    connect(m_view, &PlaylistView::browsed, this, &PlaylistContainer::onBrowsed);
    for (QTimer* timer : {&m_headers, &m_scrollRest, &m_browseRest})
        timer->setSingleShot(true);
    m_headers.setInterval(0);
    connect(&m_headers, &QTimer::timeout, this, &PlaylistContainer::updateHeaders);
    m_scrollRest.setInterval(scrollRestMs);
    connect(&m_scrollRest, &QTimer::timeout, this, [this] {
        m_delegate->setFetching(true);
        m_view->viewport()->update();
    });
    connect(m_view->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] {
        m_delegate->setFetching(false);
        m_scrollRest.start();
    });
    m_browseRest.setInterval(browseRestMs);
    connect(&m_browseRest, &QTimer::timeout, this, &PlaylistContainer::showPlaying);
    followFontSize(this, [this](FontSize) { m_headers.start(); });
}

void PlaylistContainer::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_view->setObjectName(base + QStringLiteral("-playlist"));
}

void PlaylistContainer::setModel(PlaylistModel* model)
{
    if (m_model)
        m_model->disconnect(this);
    m_model = model;
    m_view->setModel(model);
    if (!model)
        return;
    for (qsizetype i = 0; i < qsizetype(columnOrder.size()); ++i)
        m_header->moveSection(m_header->visualIndex(columnOrder[size_t(i)]), int(i));
    m_header->setSortIndicator(model->sortColumn(),
                               model->isAscending() ? Qt::AscendingOrder : Qt::DescendingOrder);
    m_view->setSortingEnabled(true);
    m_header->setSortIndicatorShown(false);
    m_header->setSectionsClickable(true);
    // What has no order to sort by, the pictures, gets no mark either.
    connect(m_header, &QHeaderView::sortIndicatorChanged, model, [this, model](int section) {
        if (model == m_model && section != model->sortColumn())
            m_header->setSortIndicator(model->sortColumn(),
                                       model->isAscending() ? Qt::AscendingOrder : Qt::DescendingOrder);
    });
    const auto later = [this] { m_headers.start(); };
    connect(model, &QAbstractItemModel::modelReset, this, later);
    connect(model, &QAbstractItemModel::rowsInserted, this, later);
    connect(model, &QAbstractItemModel::rowsRemoved, this, later);
    connect(model, &QAbstractItemModel::layoutChanged, this, later);
    // Another list is seen in the order in which it plays.
    connect(model, &PlaylistModel::playlistChanged, this, &PlaylistContainer::sortByNumber);
    updateHeaders();
}

void PlaylistContainer::sortByNumber()
{
    if (m_model && (m_model->sortColumn() != Column::NumberColumn || !m_model->isAscending()))
        m_view->sortByColumn(Column::NumberColumn, Qt::AscendingOrder);
}

void PlaylistContainer::setSelectionModel(QItemSelectionModel* selection)
{
    m_view->setSelectionModel(selection);
}

void PlaylistContainer::setClock(const ListClock* clock)
{
    m_clock = clock;
    m_delegate->setClock(clock);
    const auto repaint = [this] { m_view->viewport()->update(); };
    connect(clock, &ListClock::courseChanged, this, repaint);
    if (m_modes.contains(Program))
        connect(clock, &ListClock::ticked, this, repaint);
}

void PlaylistContainer::followClock()
{
    m_follows = true;
    connect(m_clock, &ListClock::courseChanged, this, [this] {
        if (m_clock->playing() != m_shown && !m_browseRest.isActive())
            showPlaying();
    });
}

void PlaylistContainer::onBrowsed()
{
    if (m_follows)
        m_browseRest.start();
}

void PlaylistContainer::showPlaying()
{
    if (!m_follows || !m_model || m_clock->playlist() != m_model->playlistNumber())
        return;
    m_shown = m_clock->playing();
    const EntryAddress onAir = m_clock->isPlaying(m_shown) ? m_shown : EntryAddress();
    // The next one first: where there is no room for both, the one on air is seen.
    for (const EntryAddress& address : {m_clock->next(), onAir}) {
        const QModelIndex index = address.isValid() ? m_model->indexOf(address) : QModelIndex();
        if (index.isValid())
            m_view->scrollTo(index);
    }
}

void PlaylistContainer::updateHeaders()
{
    m_headers.stop();
    if (!m_model)
        return;
    m_view->updateRowHeight(m_delegate->rowHeight(m_view->font()));
    m_header->setSectionResizeMode(QHeaderView::Fixed);
    m_header->setStretchLastSection(true);
    m_header->setSectionHidden(Column::RuntimeBeforeColumn, true);
    m_header->setSectionHidden(Column::RuntimeAfterColumn, true);
    arrangeColumns();
}

/// The columns get what their texts need at the most, and the name what is left. Measuring the texts of all
/// rows would cost what the list holds: of them only the addresses are looked at.
void PlaylistContainer::arrangeColumns()
{
    const int room = m_view->viewport()->width();
    const Dispensable& dispensable = m_modes.contains(Program) ? dispensableOnProgram : dispensableOnPreview;
    const int number = m_delegate->columnWidth(m_model, Column::NumberColumn, m_view->font());
    const auto needed = [&](int column) {
        return column == Column::NumberColumn ? number
                                              : m_delegate->columnWidth(m_model, column, m_view->font());
    };
    const auto total = [&](std::size_t given) {
        int width = 0;
        for (const Column column : columnOrder) {
            const auto at = std::ranges::find(dispensable, column) - dispensable.begin();
            if (std::size_t(at) >= given)
                width += needed(column);
        }
        return width;
    };
    m_delegate->setCompact(false);
    if (total(0) > room)
        m_delegate->setCompact(true);
    std::size_t given = 0;
    while (given < dispensable.size() && total(given) > room)
        ++given;
    int left = room;
    for (const Column column : columnOrder) {
        const bool isHidden =
            std::ranges::find(dispensable, column) - dispensable.begin() < std::ptrdiff_t(given);
        m_header->setSectionHidden(column, isHidden);
        if (!isHidden && column != Column::MediaColumn) {
            m_header->resizeSection(column, needed(column));
            left -= needed(column);
        }
    }
    m_header->resizeSection(Column::MediaColumn, std::max(left, needed(Column::MediaColumn) / 4));
}

/// Where the columns of times are, from Duration on.
QRect PlaylistContainer::timesArea() const
{
    const QRect all = m_view->viewport()->rect();
    return all.adjusted(m_header->sectionViewportPosition(Column::DurationColumn), 0, 0, 0);
}

void PlaylistContainer::changeEvent(QEvent* event)
{
    ZTFrame::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        m_headers.start();
}

bool PlaylistContainer::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_view->viewport() && event->type() == QEvent::Resize)
        m_headers.start();
    return ZTFrame::eventFilter(watched, event);
}

} // namespace vantrel
