// A cue list of 20,000 entries on the screen, as its editor draws it: shown, sorted, scrolled, edited and
// moved about, and what it holds in memory. The peer is a plain QStandardItemModel with the same cells in a
// plain table, which is filled, sorted and edited without a library behind it.
#include "bench/json_library.h"
#include "common/media/edit/playlist/editplaylistentrycommand.h"
#include "common/media/edit/playlist/moveplaylistentriescommand.h"
#include "common/media/models/playlist/playlistmodel.h"
#include "common/views/playlist/playlistcontainer.h"
#include "common/views/playlist/playlistview.h"
#include "tests/support/librarymaker.h"
#include "tests/support/mediamirror.h"

#include <QApplication>
#include <QHeaderView>
#include <QLoggingCategory>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QTableView>
#include <QTimer>

#include <functional>
#include <malloc.h>
#include <optional>
#include <time.h>

using namespace vantrel;
using namespace vantrel::bench;

namespace {

constexpr int entryCount = 20000;
constexpr int slotCount = 2000;
constexpr int movedCount = 500;
constexpr int scrollSteps = 300;

template <typename Base>
class Unconnected : public Base
{
protected:
    bool hasApi() const override { return true; }
};

Ref<MediaLibrary> makeShow()
{
    auto library = test::makeLibrary(1, slotCount);
    Playlist list("Show");
    for (int i = 1; i <= entryCount; ++i)
        list.addEntry({i, 0}, {test::slotUrl(1, 1 + static_cast<int>(i * 7919LL % slotCount)),
                               EndAction::Next, TakeTransitionType::Crossfade, 1.0});
    library->addPlaylist(1, list);
    library->toJson();
    return library;
}

std::size_t heap()
{
    return mallinfo2().uordblks + mallinfo2().hblkhd;
}

constexpr QSize tableSize(900, 700);

/// What the screen owes to what has changed is drawn, once, when its turn comes: no more than what is dirty,
/// and nothing where nothing is, which is false.
bool repaint(QTableView& view)
{
    class Watch : public QObject
    {
    public:
        bool isPainted = false;

    protected:
        bool eventFilter(QObject*, QEvent* event) override
        {
            isPainted = isPainted || event->type() == QEvent::Paint;
            return false;
        }
    } watch;
    view.viewport()->installEventFilter(&watch);
    QTimer end; // an update waits some milliseconds for the screen
    end.setSingleShot(true);
    end.start(60);
    while (!watch.isPainted && end.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return watch.isPainted;
}

void paintOrAbort(QTableView& view)
{
    if (!repaint(view))
        std::abort(); // a change that no screen shows
}

/// What the main thread spends, in milliseconds, without what it waits.
double spentMs(const std::function<void()>& work)
{
    const auto now = [] {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
    };
    const double before = now();
    work();
    return now() - before;
}

/// A window with a plain table.
class Table
{
public:
    Table()
    {
        m_view.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        m_view.setSelectionBehavior(QAbstractItemView::SelectRows);
        m_view.resize(tableSize);
        m_view.show();
        settle();
    }
    void setModel(QAbstractItemModel* model) { m_view.setModel(model); }
    void settle() { repaint(m_view); }
    void paint() { paintOrAbort(m_view); }

private:
    QTableView m_view;
};

/// A window with the table of the editor.
class Screen
{
public:
    Screen()
    {
        m_container.resize(tableSize);
        m_container.show();
        settle();
    }
    void setModel(PlaylistModel* model) { m_container.setModel(model); }
    QTableView& view() { return *m_container.list(); }
    void settle() { repaint(view()); }
    void paint() { paintOrAbort(view()); }

private:
    PlaylistContainer m_container{{Preview}, true};
};

/// Milliseconds; the best of some runs, each after its own preparation.
double best(int runs, const std::function<void()>& prepare, const std::function<void()>& run)
{
    double least = 1e9;
    for (int i = 0; i < runs; ++i) {
        prepare();
        least = std::min(least, spentMs(run));
    }
    return least;
}

class Ours
{
public:
    Ours()
        : m_mirror(makeShow())
    {
    }

    double show()
    {
        return best(
            5,
            [this] {
                m_table.setModel(nullptr);
                m_model.reset();
                m_table.settle();
            },
            [this] {
                m_model = std::make_unique<PlaylistModel>(&m_mirror.playlists, nullptr, nullptr, nullptr,
                                                          QSet<PlaybackViewMode>(), nullptr);
                m_model->setPlaylistNumber(1);
                m_table.setModel(m_model.get());
                m_table.paint();
            });
    }
    double sort(int column)
    {
        return best(
            5,
            [this] {
                m_model->sort(PlaylistModel::NumberColumn);
                m_table.settle();
            },
            [=, this] {
                m_model->sort(column);
                m_table.paint();
            });
    }
    /// The longest of the steps from the top to the end; the best of some ways.
    double scroll()
    {
        m_model->sort(PlaylistModel::NumberColumn);
        QScrollBar* bar = m_table.view().verticalScrollBar();
        double least = 1e9;
        for (int way = 0; way < 3; ++way) {
            double longest = 0;
            bar->setValue(0);
            m_table.settle();
            for (int step = 1; step <= scrollSteps; ++step) {
                const int to = static_cast<int>(static_cast<long long>(bar->maximum()) * step / scrollSteps);
                longest = std::max(longest, spentMs([&] {
                                       bar->setValue(to);
                                       m_table.paint();
                                   }));
            }
            least = std::min(least, longest);
        }
        return least;
    }
    /// transition: of the first entry, which moves the times of all.
    double edit(bool transition)
    {
        m_model->sort(PlaylistModel::NumberColumn);
        m_table.view().scrollToTop();
        int round = 0;
        return best(
            9, [this] { m_table.settle(); },
            [&] {
                PlaylistEntry entry = *std::as_const(*m_mirror.library).findPlaylistEntry(1, {2, 0});
                if (transition)
                    entry.setTransitionDuration(1.5 + ++round);
                else
                    entry.setEndAction(++round % 2 ? EndAction::Stop : EndAction::Pause);
                Unconnected<EditPlaylistEntryCommand> command;
                if (!command.init(m_mirror.library.get(), 1, {2, 0}, entry))
                    std::abort();
                m_mirror.api.applyMediaLibraryPatch(command.redoPatch());
                m_table.paint();
            });
    }
    double move()
    {
        m_model->sort(PlaylistModel::NumberColumn);
        m_table.view().scrollToTop();
        std::optional<Patch> back;
        return best(
            5,
            [&] {
                if (back)
                    m_mirror.api.applyMediaLibraryPatch(*back);
                const QItemSelection rows(m_model->index(5000, 0), m_model->index(5000 + movedCount - 1, 10));
                m_table.view().selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect);
                m_table.settle();
            },
            [&] {
                QList<QModelIndex> rows = m_table.view().selectionModel()->selectedRows();
                std::sort(rows.begin(), rows.end());
                Unconnected<MovePlaylistEntriesCommand> command;
                if (!command.init(m_mirror.library.get(), 1, m_model->getEntryAddresses(rows), {100, 0}))
                    std::abort();
                back = command.undoPatch();
                m_mirror.api.applyMediaLibraryPatch(command.redoPatch());
                m_table.paint();
                if (m_table.view().selectionModel()->selectedRows().size() != movedCount ||
                    m_model->rowCount() != entryCount)
                    std::abort();
            });
    }

private:
    test::MediaMirror m_mirror;
    std::unique_ptr<PlaylistModel> m_model;
    Screen m_table;
};

std::unique_ptr<QStandardItemModel> makePlain()
{
    auto model = std::make_unique<QStandardItemModel>(0, PlaylistModel::ColumnCount);
    for (int i = 1; i <= entryCount; ++i) {
        QList<QStandardItem*> row;
        for (int column = 0; column < PlaylistModel::ColumnCount; ++column)
            row.append(new QStandardItem);
        row[PlaylistModel::NumberColumn]->setData(i, Qt::DisplayRole);
        row[PlaylistModel::EndActionColumn]->setText(QStringLiteral("Next"));
        row[PlaylistModel::TransitionColumn]->setText(QStringLiteral("Crossfade"));
        row[PlaylistModel::RuntimeBeforeColumn]->setData(i * 9.0, Qt::DisplayRole);
        row[PlaylistModel::RuntimeAfterColumn]->setData(i * 9.0 + 10, Qt::DisplayRole);
        row[PlaylistModel::MediaColumn]->setText(QStringLiteral("c1s%1").arg(i * 7919LL % slotCount));
        row[PlaylistModel::DurationColumn]->setData(10.0, Qt::DisplayRole);
        row[PlaylistModel::TransitionDurationColumn]->setData(1.0, Qt::DisplayRole);
        row[PlaylistModel::SizeColumn]->setText(QStringLiteral("0 B"));
        model->appendRow(row);
    }
    return model;
}

struct PlainFigures
{
    double show = 0;
    double sort = 0;
    double edit = 0;
    double move = 0;
    double bytes = 0; // an entry
};

PlainFigures measurePlain()
{
    PlainFigures figures;
    Table table;
    std::unique_ptr<QStandardItemModel> model;
    const std::size_t before = heap();
    makePlain().swap(model);
    figures.bytes = double(heap() - before) / entryCount;
    figures.show = best(
        3,
        [&] {
            table.setModel(nullptr);
            model.reset();
            table.settle();
        },
        [&] {
            model = makePlain();
            table.setModel(model.get());
            table.paint();
        });
    figures.sort = best(
        3,
        [&] {
            model->sort(PlaylistModel::NumberColumn);
            table.settle();
        },
        [&] {
            model->sort(PlaylistModel::MediaColumn);
            table.paint();
        });
    model->sort(PlaylistModel::NumberColumn);
    figures.edit = best(
        5, [&] { table.settle(); },
        [&] {
            model->item(1, PlaylistModel::TransitionDurationColumn)->setData(2.5, Qt::DisplayRole);
            for (int row = 1; row < entryCount; ++row) {
                for (const int column :
                     {PlaylistModel::RuntimeBeforeColumn, PlaylistModel::RuntimeAfterColumn}) {
                    QStandardItem* item = model->item(row, column);
                    item->setData(item->data(Qt::DisplayRole).toDouble() - 0.5, Qt::DisplayRole);
                }
            }
            table.paint();
        });
    figures.move = best(
        3, [&] { table.settle(); },
        [&] {
            for (int i = 0; i < movedCount; ++i)
                model->insertRow(100 + i, model->takeRow(5000 + i));
            table.paint();
        });
    return figures;
}

/// Bytes an entry that the provider and a model hold beyond the library.
double ourBytes()
{
    const Ref<MediaLibrary> library = makeShow();
    auto media = std::make_unique<MediaLibraryProvider>(library);
    media->onReset();
    const std::size_t before = heap();
    PlaylistProvider playlists(library, media.get());
    PlaylistModel model(&playlists, nullptr, nullptr, nullptr, {}, nullptr);
    model.setPlaylistNumber(1);
    return double(heap() - before) / model.rowCount();
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    const double bytes = ourBytes();
    const PlainFigures plain = measurePlain();
    const char* const peer = "QStandardItemModel";
    report("playlist/memory/20k", peer, bytes, plain.bytes, "B an entry", plain.bytes / bytes, 1);
    report("playlist/memory-bound/20k", "700 bytes an entry are allowed", bytes, 700, "B an entry",
           700 / bytes, 1);
    Ours ours;
    const auto row = [&](const char* name, double ms, double theirs, double allowed) {
        const std::string key = std::string("playlist/") + name;
        if (theirs > 0)
            report(key + "/20k", peer, ms, theirs, "ms", theirs / ms, 1);
        report(key + "-bound/20k", "what an operator is to wait at most", ms, allowed, "ms", allowed / ms, 1);
    };
    row("show", ours.show(), plain.show, 100);
    row("sort-name", ours.sort(PlaylistModel::MediaColumn), plain.sort, 50);
    row("sort-duration", ours.sort(PlaylistModel::DurationColumn), 0, 50);
    row("scroll-longest", ours.scroll(), 0, 16);
    row("edit-entry", ours.edit(false), 0, 5);
    row("edit-times-of-all", ours.edit(true), plain.edit, 16);
    row("move-500", ours.move(), plain.move, 50);
    return 0;
}
