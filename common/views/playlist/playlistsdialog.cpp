#include "common/views/playlist/playlistsdialog.h"

#include "common/command/execute.h"
#include "common/media/edit/playlist/moveplaylistcommand.h"
#include "common/media/models/playlist/playlistlibrarymodel.h"
#include "common/session/settings/timeutils.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/textinputdialog.h"
#include "common/views/playlist/listclock.h"
#include "tarn/media/medialibrary.h"
#include "util/clocktime.h"

#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

using Column = PlaylistLibraryModel::Column;

namespace {

constexpr QSize tableSize{460, 260}; // at the medium text size

/// Durations as times, and the list on air in its colour.
class ListDelegate : public QStyledItemDelegate
{
public:
    ListDelegate(const ListClock* clock, QObject* parent)
        : QStyledItemDelegate(parent)
        , m_clock(clock)
    {
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        const auto own = [&](Column column) { return index.siblingAtColumn(column).data(Qt::EditRole); };
        const bool isOnAir =
            m_clock->playlist() > 0 && own(Column::NumberColumn).toUInt() == m_clock->playlist();
        if (index.column() == Column::DurationColumn) {
            const double seconds = index.data().toDouble();
            option->text =
                seconds > 0 ? TimeUtils::formatClockTimeShort(clocktime::fromSeconds(seconds)) : QString();
            if (own(Column::InfiniteColumn).toBool())
                option->text = PlaylistsDialog::tr("no end");
        } else if (isOnAir && index.column() == Column::NameColumn) {
            option->text += QStringLiteral("  (") + PlaylistsDialog::tr("on program") + u')';
        }
        if (isOnAir)
            option->backgroundBrush = colors::getColor(colors::Zt_red_20);
    }

private:
    const ListClock* m_clock;
};

} // namespace

PlaylistsDialog::PlaylistsDialog(const Sources& sources, uint shown, QWidget* parent)
    : ZTDialog(tr("All playlists"), parent)
    , m_sources(sources)
    , m_table(new QTableView(this))
    , m_number(new PushButton(tr("NUMBER..."), this))
    , m_remove(new PushButton(tr("REMOVE..."), this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAcceptText(tr("SHOW"));
    buildTable();
    m_number->setStyleClass(QStringLiteral("cancel"));
    m_number->setToolTip(tr("Give the playlist another number"));
    m_remove->setStyleClass(QStringLiteral("cancel"));
    m_remove->setToolTip(tr("Remove the playlist with its entries"));
    addButton(m_number);
    addButton(m_remove);
    setObjectNames(QStringLiteral("PlaylistEditor-playlists"));
    m_table->setObjectName(QStringLiteral("PlaylistEditor-playlists-table"));
    m_number->setObjectName(QStringLiteral("PlaylistEditor-playlists-number"));
    m_remove->setObjectName(QStringLiteral("PlaylistEditor-playlists-remove"));
    connect(this, &ZTDialog::confirmed, this, [this] {
        if (current() > 0)
            Q_EMIT chosen(current());
    });
    connect(m_table, &QAbstractItemView::doubleClicked, acceptButton(), &QAbstractButton::click);
    connect(m_number, &QAbstractButton::clicked, this, &PlaylistsDialog::askForNumber);
    connect(m_remove, &QAbstractButton::clicked, this, [this] { Q_EMIT removalWanted(current()); });
    connect(sources.clock, &ListClock::courseChanged, m_table->viewport(), qOverload<>(&QWidget::update));
    m_table->selectRow(std::max(0, sources.playlists->rowOf(shown)));
    refresh();
}

void PlaylistsDialog::buildTable()
{
    m_table->setModel(m_sources.playlists);
    m_table->setItemDelegate(new ListDelegate(m_sources.clock, m_table));
    m_table->setAccessibleName(tr("All playlists"));
    m_table->setToolTip(tr("Double-click or Enter: show the playlist"));
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    QHeaderView* header = m_table->horizontalHeader();
    header->setHighlightSections(false);
    for (int column = 0; column < Column::ColumnCount; ++column) {
        const bool isShown =
            column == Column::NameColumn || column == Column::DurationColumn || column == Column::CountColumn;
        m_table->setColumnHidden(column, !isShown);
        header->setSectionResizeMode(column, column == Column::NameColumn ? QHeaderView::Stretch
                                                                          : QHeaderView::ResizeToContents);
    }
    followFontSize(m_table, [this](FontSize size) {
        m_table->setMinimumSize(scaled(tableSize.width(), size), scaled(tableSize.height(), size));
        m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 10);
    });
    contentLayout()->addWidget(m_table);
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &PlaylistsDialog::refresh);
    connect(m_sources.playlists, &QAbstractItemModel::rowsRemoved, this, &PlaylistsDialog::refresh);
    connect(m_sources.playlists, &QAbstractItemModel::modelReset, this, &PlaylistsDialog::refresh);
}

void PlaylistsDialog::setEditable(bool editable)
{
    m_isEditable = editable;
    refresh();
}

/// 0 for none.
uint PlaylistsDialog::current() const
{
    const QModelIndexList rows = m_table->selectionModel()->selectedRows();
    return rows.isEmpty() ? 0 : m_sources.playlists->playlistNumberAt(rows.first().row());
}

void PlaylistsDialog::refresh()
{
    const bool isAny = current() > 0;
    setDescription(m_sources.playlists->rowCount() == 0 ? tr("There are no playlists yet.") : QString());
    setAcceptEnabled(isAny);
    m_number->setEnabled(isAny && m_isEditable);
    m_remove->setEnabled(isAny && m_isEditable);
}

void PlaylistsDialog::askForNumber()
{
    const uint playlist = current();
    auto* dialog = new TextInputDialog(tr("Number of the playlist"), tr("NEW NUMBER:"), tr("MOVE"), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setObjectNames(QStringLiteral("PlaylistEditor-playlists-number-dialog"));
    dialog->setValue(0, QString::number(playlist));
    dialog->setClosesOnAccept(false);
    connect(dialog, &TextInputDialog::valuesConfirmed, this,
            [this, dialog, playlist](const QStringList& values) {
                bool isNumber = false;
                const int number = values.value(0).toInt(&isNumber);
                const bool isTaken = number != int(playlist) && m_sources.library->findPlaylist(number);
                if (!isNumber || number < MediaLibrary::indexMin || number > MediaLibrary::indexMax)
                    return dialog->setError(0, tr("A playlist has a number from %1 to %2.")
                                                   .arg(MediaLibrary::indexMin)
                                                   .arg(MediaLibrary::indexMax));
                if (isTaken)
                    return dialog->setError(0, tr("Another playlist has this number."));
                if (number != int(playlist))
                    execute<MovePlaylistCommand>(m_sources.stack, "MovePlaylistCommand", m_sources.library,
                                                 int(playlist), number);
                dialog->accept();
            });
    dialog->open();
}

} // namespace vantrel
