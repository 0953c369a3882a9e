#include "common/views/playlist/playlistsdialog.h"

#include "common/session/settings/configuration.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/views/playlist/playliststable.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTableView>
#include <QVBoxLayout>

#include <array>

namespace vantrel {

namespace {

using Column = PlaylistsTable::Column;

constexpr int tableWidth = 560; // pixels at the medium text size
constexpr int tableHeight = 280;
constexpr int rowHeight = 28;

constexpr std::array columnOrder{Column::RowColumn, Column::NumberColumn, Column::PlainNameColumn,
                                 Column::CountColumn, Column::DurationColumn};

} // namespace

PlaylistsDialog::PlaylistsDialog(PlaylistLibraryModel* library, const ListClock* clock, uint shown,
                                 QWidget* parent)
    : ZTDialog(tr("All playlists"), parent)
    , m_table(new PlaylistsTable(library, clock, this))
    , m_view(new QTableView(this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAcceptText(tr("SHOW"));
    setCancelText(tr("CLOSE"));
    buildTable();
    buildButtons();
    setObjectNames(QStringLiteral("AllPlaylists"));
    m_view->setObjectName(QStringLiteral("AllPlaylists-table"));
    connect(this, &ZTDialog::confirmed, this, [this] { Q_EMIT chosen(current()); });
    connect(m_table, &PlaylistsTable::renameRequested, this, &PlaylistsDialog::renameRequested);
    connect(m_table, &PlaylistsTable::numberRequested, this, &PlaylistsDialog::numberRequested);
    setCurrent(shown);
    m_view->setFocus();
}

void PlaylistsDialog::buildTable()
{
    m_view->setModel(m_table);
    m_view->setAccessibleName(tr("All playlists"));
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setShowGrid(false);
    m_view->setWordWrap(false);
    m_view->setTabKeyNavigation(false);
    m_view->setCornerButtonEnabled(false);
    m_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_view->verticalHeader()->hide();
    m_view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    QHeaderView* header = m_view->horizontalHeader();
    header->setHighlightSections(false);
    header->setFocusPolicy(Qt::NoFocus);
    header->setMinimumSectionSize(1);
    for (int i = 0; i < int(columnOrder.size()); ++i)
        header->moveSection(header->visualIndex(columnOrder[size_t(i)]), i);
    for (const int unseen : {int(Column::NameColumn), int(Column::InfiniteColumn)})
        m_view->setColumnHidden(unseen, true);
    m_view->installEventFilter(this);
    contentLayout()->addWidget(m_view, 1);
    followFontSize(this, [this](FontSize size) {
        m_view->setMinimumSize(scaled(tableWidth, size), scaled(tableHeight, size));
        m_view->verticalHeader()->setDefaultSectionSize(scaled(rowHeight, size));
        arrangeColumns();
    });
    connect(m_view, &QTableView::doubleClicked, this, [this] { acceptButton()->click(); });
    connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &PlaylistsDialog::updateOffers);
    const auto changed = [this] {
        arrangeColumns();
        updateOffers();
    };
    connect(m_table, &QAbstractItemModel::modelReset, this, changed);
    connect(m_table, &QAbstractItemModel::rowsInserted, this, changed);
    connect(m_table, &QAbstractItemModel::rowsRemoved, this, changed);
}

/// Name gets what the others leave.
void PlaylistsDialog::arrangeColumns()
{
    QHeaderView* header = m_view->horizontalHeader();
    for (const Column column : columnOrder)
        header->setSectionResizeMode(
            column, column == Column::PlainNameColumn ? QHeaderView::Stretch : QHeaderView::ResizeToContents);
}

PushButton* PlaylistsDialog::makeButton(const QString& text, const QString& tip, const char* name)
{
    auto* button = new PushButton(text, this);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setObjectName(QStringLiteral("AllPlaylists-%1-button").arg(QLatin1String(name)));
    button->setAutoDefault(false);
    button->setStyleClass(QStringLiteral("cancel"));
    m_actions.append(button);
    return button;
}

void PlaylistsDialog::buildButtons()
{
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::normal);
    const auto add = [&](const QString& text, const QString& tip, const char* name, const char* key,
                         const std::function<void()>& act) {
        PushButton* button = makeButton(text, tip, name);
        if (key)
            setHotkeyTip(button, tip, {QLatin1String(key)});
        connect(button, &QAbstractButton::clicked, this, act);
        row->addWidget(button);
    };
    add(tr("Rename"), tr("Rename the playlist"), "rename", "rename",
        [this] { edit(Column::PlainNameColumn); });
    add(tr("Number"), tr("Give the playlist another number"), "number", "renumber_entries",
        [this] { edit(Column::NumberColumn); });
    add(tr("Up"), tr("Swap numbers with the playlist above"), "up", "move_entries_up", [this] { swap(-1); });
    add(tr("Down"), tr("Swap numbers with the playlist below"), "down", "move_entries_down",
        [this] { swap(1); });
    add(tr("Duplicate"), tr("Make a copy of the playlist"), "duplicate", "copy",
        [this] { Q_EMIT duplicateRequested(current()); });
    add(tr("Remove"), tr("Remove the playlist"), "remove", "delete",
        [this] { Q_EMIT removeRequested(current()); });
    contentLayout()->addLayout(row);
}

uint PlaylistsDialog::current() const
{
    return m_table->library()->playlistNumberAt(m_view->currentIndex().row());
}

void PlaylistsDialog::setCurrent(uint playlist)
{
    const int row = m_table->library()->rowOf(playlist);
    if (row >= 0)
        m_view->setCurrentIndex(m_table->index(row, Column::PlainNameColumn));
    updateOffers();
}

void PlaylistsDialog::setEditable(bool editable)
{
    m_isEditable = editable;
    m_table->setEditable(editable);
    updateOffers();
}

void PlaylistsDialog::updateOffers()
{
    const bool hasList = current() != ~0U;
    setDescription(m_table->rowCount() == 0 ? tr("There are no playlists yet.") : QString());
    setAcceptEnabled(hasList);
    for (PushButton* action : std::as_const(m_actions))
        action->setEnabled(hasList && m_isEditable);
}

void PlaylistsDialog::edit(int column)
{
    m_view->setFocus();
    if (m_view->currentIndex().isValid() && m_isEditable)
        m_view->edit(m_view->currentIndex().siblingAtColumn(column));
}

void PlaylistsDialog::swap(int step)
{
    const uint playlist = current();
    Q_EMIT swapRequested(playlist, m_table->library()->playlistNumberAt(m_view->currentIndex().row() + step));
}

bool PlaylistsDialog::handleKey(const QKeyEvent& event)
{
    const QKeySequence key = Hotkeys::pressed(event);
    static constexpr std::array keys{
        "rename", "renumber_entries", "move_entries_up", "move_entries_down", "copy", "delete"};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (!key.isEmpty() && Hotkeys::current(QLatin1String(keys[i])) == key) {
            // Held down, a key moves a list on and on; nothing else is meant twice.
            if (!event.isAutoRepeat() || QLatin1String(keys[i]).startsWith(QLatin1String("move_entries")))
                m_actions[qsizetype(i)]->click();
            return true;
        }
    }
    return false;
}

bool PlaylistsDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_view && event->type() == QEvent::KeyPress &&
        handleKey(*static_cast<const QKeyEvent*>(event)))
        return true;
    return ZTDialog::eventFilter(watched, event);
}

} // namespace vantrel
