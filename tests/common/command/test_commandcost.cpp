#include "common/command/libraryeditcommand.h"
#include "common/media/edit/slot/renameslotcommand.h"
#include "common/media/edit/slot/setdurationcommand.h"
#include "tarn/json/jsoncounters.h"
#include "tarn/media/playenums.h"
#include "tests/support/librarymaker.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <functional>

using namespace vantrel;

namespace {

struct Cost
{
    std::uint64_t made = 0;
    std::uint64_t visited = 0;
};

class EditCommand : public LibraryEditCommand
{
public:
    using LibraryEditCommand::Edit;
    bool init(const MediaLibrary* library, const Edit& edit, const Edit& inverse)
    {
        return rehearse(library, QStringLiteral("edit"), edit, inverse);
    }

protected:
    bool hasApi() const override { return true; }
};

class RenameCommand : public RenameSlotCommand
{
protected:
    bool hasApi() const override { return true; }
};

class DurationCommand : public SetDurationCommand
{
protected:
    bool hasApi() const override { return true; }
};

constexpr int perCollection = 1000;
constexpr int perPlaylist = 200;

/// As many slots as that in collections of 1,000, a fifth as many entries in playlists of 200.
const MediaLibrary& libraryOf(int slotCount)
{
    static std::map<int, Ref<MediaLibrary>> made;
    Ref<MediaLibrary>& library = made[slotCount];
    if (library)
        return *library;
    library = test::makeLibrary(slotCount / perCollection, perCollection);
    for (int number = 1; number <= slotCount / 5 / perPlaylist; ++number) {
        Playlist playlist("list");
        for (int entry = 1; entry <= perPlaylist; ++entry)
            playlist.addEntry({entry, 0}, PlaylistEntry(test::slotUrl(1, entry), EndAction::Next,
                                                        TakeTransitionType::DirectCut, 0));
        library->addPlaylist(number, playlist);
    }
    library->toJson();
    return *library;
}

bool renameSlot(const MediaLibrary& library, Patch& redo)
{
    RenameCommand command;
    const bool made = command.init(&library, 1, 500, QStringLiteral("another"));
    redo = command.redoPatch();
    return made && command.undoPatch().size() == 1;
}

bool setDuration(const MediaLibrary& library, Patch& redo)
{
    DurationCommand command;
    const QUrl content(QString::fromStdString(library.findSlot(1, 500)->getUrl()));
    const bool made = command.init(&library, content, 12.5, false, MediaAddress(1, 500));
    redo = command.redoPatch();
    return made && command.undoPatch().size() == redo.size();
}

bool editEntry(const MediaLibrary& library, Patch& redo)
{
    const auto setTo = [](EndAction action) {
        return [=](MediaLibrary& copy) {
            copy.findPlaylistEntry(1, {100, 0})->setEndAction(action);
            return true;
        };
    };
    EditCommand command;
    const bool made = command.init(&library, setTo(EndAction::Stop), setTo(EndAction::Next));
    redo = command.redoPatch();
    return made && command.undoPatch().size() == 1;
}

bool clearPlaylist(const MediaLibrary& library, Patch& redo)
{
    const Playlist full = *library.findPlaylist(1);
    EditCommand command;
    const bool made = command.init(
        &library,
        [](MediaLibrary& copy) {
            for (int entry = 1; entry <= perPlaylist; ++entry)
                copy.findPlaylist(1)->removeEntry({entry, 0});
            return true;
        },
        [&full](MediaLibrary& copy) {
            for (const auto& [address, entry] : full.getEntries())
                copy.findPlaylist(1)->addEntry(address, entry);
            return true;
        });
    redo = command.redoPatch();
    return made && command.undoPatch().size() == perPlaylist;
}

} // namespace

using Edit = bool (*)(const MediaLibrary&, Patch&);
Q_DECLARE_METATYPE(Edit)

/// What the whole of a command makes and opens does not depend on how large the library is.
class TestCommandCost : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsStay_data()
    {
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<int>("operations");
        QTest::addColumn<int>("mostMade");
        QTest::addColumn<int>("mostVisited");
        QTest::newRow("slot") << &renameSlot << 1 << 15 << 25;
        QTest::newRow("duration") << &setDuration << 1 << 15 << 25;
        QTest::newRow("entry") << &editEntry << 1 << 25 << 40;
        QTest::newRow("cleared playlist") << &clearPlaylist << perPlaylist << 120 << 60;
    }

    void countsStay()
    {
        QFETCH(Edit, edit);
        QFETCH(int, operations);
        QFETCH(int, mostMade);
        QFETCH(int, mostVisited);
        QMap<int, Cost> costs;
        for (const int slotCount : {1000, 100000}) {
            const MediaLibrary& library = libraryOf(slotCount);
            Patch redo;
            JsonCounters::start();
            const bool made = edit(library, redo);
            JsonCounters::stop();
            QVERIFY(made);
            QCOMPARE(redo.size(), std::size_t(operations));
            costs[slotCount] = {JsonCounters::nodesMade, JsonCounters::nodesVisited};
        }
        const Cost small = costs[1000];
        const Cost large = costs[100000];
        const QByteArray seen = QStringLiteral("made %1 and %2, visited %3 and %4")
                                    .arg(small.made)
                                    .arg(large.made)
                                    .arg(small.visited)
                                    .arg(large.visited)
                                    .toUtf8();
        QVERIFY2(large.made <= small.made + 4 && large.visited <= small.visited + 8, seen.constData());
        QVERIFY2(large.made <= std::uint64_t(mostMade) && large.visited <= std::uint64_t(mostVisited),
                 seen.constData());
    }
};

HALCYRA_TEST(TestCommandCost)
#include "test_commandcost.moc"
