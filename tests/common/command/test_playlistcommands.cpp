#include "common/media/edit/playlist/addmediatoplaylistcommand.h"
#include "common/media/edit/playlist/appendplaylistentriescommand.h"
#include "common/media/edit/playlist/clearplaylistcommand.h"
#include "common/media/edit/playlist/dragplaylistentriescommand.h"
#include "common/media/edit/playlist/importplaylistcommand.h"
#include "common/media/edit/playlist/moveplaylistcommand.h"
#include "common/media/edit/playlist/moveplaylistentriescommand.h"
#include "common/media/edit/playlist/newplaylistandmediacommand.h"
#include "common/media/edit/playlist/pasteplaylistentriescommand.h"
#include "common/media/edit/playlist/removeplaylistentrycommand.h"
#include "common/media/edit/playlist/renumberplaylistcommand.h"
#include "common/media/edit/playlist/replaceplaylistentrycommand.h"
#include "tarn/media/medialibrary.h"
#include "tests/common/command/online.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <functional>

using namespace vantrel;
using test::Make;
using test::make;
using test::Online;

namespace {

EntryAddress at(const char* text)
{
    EntryAddress address;
    address.parseString(text);
    return address;
}

QList<EntryAddress> list(const char* text)
{
    QList<EntryAddress> addresses;
    for (const QByteArray& part : QByteArray(text).split(' '))
        addresses.append(at(part.constData()));
    return addresses;
}

QList<QString> urls(const char* text)
{
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

/// "1=a 2=b": entries of playlist 1, each with a transition of its own.
Ref<MediaLibrary> libraryOf(const QString& entries)
{
    auto library = makeRef<MediaLibrary>();
    Playlist playlist("Show");
    double transition = 2;
    for (const QString& part : entries.split(u' ', Qt::SkipEmptyParts)) {
        const std::string url = part.section(u'=', 1).toStdString();
        playlist.addEntry(at(part.section(u'=', 0, 0).toLatin1().constData()),
                          PlaylistEntry(url, EndAction::Pause, TakeTransitionType::DipToColor, transition++));
    }
    library->addPlaylist(1, playlist);
    return library;
}

QString textOf(const MediaLibrary& library, int number)
{
    const Playlist* playlist = library.findPlaylist(number);
    QStringList texts;
    if (playlist) {
        for (const auto& [address, entry] : playlist->getEntries())
            texts << QString::fromStdString(address.toString(true) + "=" + entry.getMediaUrl());
    }
    return playlist ? texts.join(u' ') : QStringLiteral("none");
}

using Add = AddMediaToPlaylistCommand;

} // namespace

class TestPlaylistCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void edits_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<Make>("make");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("after");
        const auto row = [](const char* name, const char* before, const Make& make, const char* text,
                            const char* after) {
            QTest::newRow(name) << QString::fromLatin1(before) << make << QString::fromLatin1(text)
                                << QString::fromLatin1(after);
        };
        const char* const three = "1=a 2=b 3=c";
        row("clear", three, make<ClearPlaylistCommand>(1), "Cleared all entries from playlist 1", "");
        row("clear nothing", "", make<ClearPlaylistCommand>(1), "Cleared all entries from playlist 1", "");
        row("before", three, make<Add>(1, Add::Before, at("3"), urls("x y")), "Add media to playlist",
            "1=a 2=b 2.1=x 2.2=y 3=c");
        row("after", three, make<Add>(1, Add::After, at("3"), urls("x y")), "Add media to playlist",
            "1=a 2=b 3=c 4=x 5=y");
        row("on top", three, make<Add>(1, Add::After, EntryAddress(), urls("x")), "Add media to playlist",
            "0.999=x 1=a 2=b 3=c");
        row("at end", three, make<Add>(1, Add::AtEnd, EntryAddress(), urls("x")), "Add media to playlist",
            "1=a 2=b 3=c 4=x");
        row("replace", three, make<Add>(1, Add::Replace, at("2"), urls("x")), "Add media to playlist",
            "1=a 2=x 3=c");
        row("replace by two", three, make<Add>(1, Add::Replace, at("2"), urls("x y")),
            "Add media to playlist", "1=a 2=x 2.1=y 3=c");
        row("remove", three, make<RemovePlaylistEntryCommand>(1, list("3 1")), "Remove entries from playlist",
            "2=b");
        row("second up", three, make<MovePlaylistEntriesCommand>(1, list("2"), at("1")),
            "Move entries in playlist", "0.999=b 1=a 3=c");
        row("two up", three, make<MovePlaylistEntriesCommand>(1, list("2 3"), at("1")),
            "Move entries in playlist", "0.998=b 0.999=c 1=a");
        row("first down", three, make<MovePlaylistEntriesCommand>(1, list("1"), at("2")),
            "Move entries in playlist", "2=b 2.1=a 3=c");
        row("drag on top", three, make<DragPlaylistEntriesCommand>(1, list("2 3"), EntryAddress()),
            "Move entries in playlist", "0.998=b 0.999=c 1=a");
        row("drag", three, make<DragPlaylistEntriesCommand>(1, list("3"), at("1")),
            "Move entries in playlist", "1=a 1.1=c 2=b");
        // The places of what is dragged are free for it.
        row("drag into its own room", "1=a 1.1=b 1.2=c 2=d",
            make<DragPlaylistEntriesCommand>(1, list("1.1 1.2"), at("1")), "Move entries in playlist",
            "1=a 1.1=b 1.2=c 2=d");
        row("drag behind itself", three, make<DragPlaylistEntriesCommand>(1, list("2 3"), at("2")),
            "Move entries in playlist", three);
        row("append", three, make<AppendPlaylistEntriesCommand>(1, list("1 2")),
            "Append entries to end in playlist", "3=c 4=a 5=b");
        row("replace entry", three, make<ReplacePlaylistEntryCommand>(1, list("1 2"), at("3")),
            "Replace entries from playlist", "3=a 4=b");
        row("replace by itself and another", three,
            make<ReplacePlaylistEntryCommand>(1, list("2 3"), at("2")), "Replace entries from playlist",
            "1=a 2=b 3=c");
        row("replace and squeeze", "1=a 2=b 3=c 4=d",
            make<ReplacePlaylistEntryCommand>(1, list("1 4"), at("2")), "Replace entries from playlist",
            "2=a 2.1=d 3=c");
        row("renumber one", three, make<RenumberPlaylistCommand>(1, at("5"), list("2")),
            "Renumber playlist 1", "1=a 3=c 5=b");
        row("renumber all", "1=a 1.1=b 7=c", make<RenumberPlaylistCommand>(1, at("1"), list("1 1.1 7")),
            "Renumber playlist 1", "1=a 2=b 3=c");
        row("renumber into a gap", three, make<RenumberPlaylistCommand>(1, at("1.1"), list("2 3")),
            "Renumber playlist 1", "1=a 1.1=b 2=c");
        row("paste", three,
            make<PastePlaylistEntriesCommand>(
                1, Add::After, at("1"),
                QList<PlaylistEntry>{{"x", EndAction::Stop, TakeTransitionType::DirectCut, 0}}),
            "Paste entries into playlist 1", "1=a 1.1=x 2=b 3=c");
        row("import", three,
            make<ImportPlaylistCommand>(
                1, QString(), ImportPlaylistCommand::Entries{{at("4"), PlaylistEntry()}, {at("2.5"), {}}}),
            "Import entries into playlist 1", "2.5= 4=");
    }

    /// The text and the result; an undo gives back what was there whole, and a redo the same as before.
    void edits()
    {
        QFETCH(QString, before);
        QFETCH(Make, make);
        QFETCH(QString, text);
        QFETCH(QString, after);
        const auto library = libraryOf(before);
        const Json original = library->toJson();
        bool ok = false;
        const auto command = make(library.get(), ok);
        QVERIFY(ok && command->initialized());
        QCOMPARE(command->text(), text);
        QVERIFY(library->toJson() == original);
        QCOMPARE(library->applyDiff(command->redoPatch()), 0);
        QCOMPARE(textOf(*library, 1), after);
        const Json edited = library->toJson();
        QCOMPARE(library->applyDiff(command->undoPatch()), 0);
        QVERIFY(library->toJson() == original);
        QCOMPARE(library->applyDiff(command->redoPatch()), 0);
        QVERIFY(library->toJson() == edited);
    }

    /// What only a newer server knows of a list stays with it, and goes with a copy of it.
    void keepsUnknownMembers()
    {
        const auto library = libraryOf(QStringLiteral("1=a"));
        Patch newer;
        newer.append({PatchOpType::Add, Path("/playlists/1/locked"), {}, Json(true)});
        newer.append({PatchOpType::Add, Path("/playlists/1/entries/1/note"), {}, Json("n")});
        QCOMPARE(library->applyDiff(newer), 0);
        const Json before = library->toJson();
        Online<ImportPlaylistCommand> copy;
        QVERIFY(copy.init(library.get(), 2, *std::as_const(*library).findPlaylist(1)));
        QCOMPARE(library->applyDiff(copy.redoPatch()), 0);
        QVERIFY(library->toJson().get("playlists").get("2") == before.get("playlists").get("1"));
        Online<ImportPlaylistCommand> import;
        QVERIFY(import.init(library.get(), 1, QString(), ImportPlaylistCommand::Entries{{at("4"), {}}}));
        QCOMPARE(library->applyDiff(import.redoPatch()), 0);
        QCOMPARE(textOf(*library, 1), QStringLiteral("4="));
        QVERIFY(library->toJson().get("playlists").get("1").get("locked").asBool());
        QCOMPARE(library->applyDiff(import.undoPatch()) + library->applyDiff(copy.undoPatch()), 0);
        QVERIFY(library->toJson() == before);
    }

    void lists()
    {
        const auto library = libraryOf(QStringLiteral("1=a"));
        Online<MovePlaylistCommand> move;
        QVERIFY(move.init(library.get(), 1, 7));
        QCOMPARE(move.text(), QStringLiteral("Move playlist 1 to 7"));
        Online<NewPlaylistAndMediaCommand> add;
        QVERIFY(add.init(library.get(), urls("x y"), 3));
        QCOMPARE(add.text(), QStringLiteral("New playlist 3 and media : 2"));
        QCOMPARE(library->applyDiff(move.redoPatch()) + library->applyDiff(add.redoPatch()), 0);
        QCOMPARE(textOf(*library, 1) + textOf(*library, 7), QStringLiteral("none1=a"));
        QCOMPARE(textOf(*library, 3), QStringLiteral("1=x 2=y"));
        const PlaylistEntry* added = std::as_const(*library).findPlaylistEntry(3, at("2"));
        QCOMPARE(added->getTransitionDuration(), 1.0);
        QCOMPARE(library->applyDiff(add.undoPatch()) + library->applyDiff(move.undoPatch()), 0);
        QCOMPARE(textOf(*library, 1) + textOf(*library, 3), QStringLiteral("1=anone"));
    }

    /// Entries keep their transitions and end actions wherever they go.
    void movesWholeEntries()
    {
        const auto library = libraryOf(QStringLiteral("1=a 2=b 3=c"));
        const PlaylistEntry moved = *std::as_const(*library).findPlaylistEntry(1, at("3"));
        Online<ReplacePlaylistEntryCommand> command;
        QVERIFY(command.init(library.get(), 1, list("3"), at("1")));
        QCOMPARE(library->applyDiff(command.redoPatch()), 0);
        QVERIFY(*std::as_const(*library).findPlaylistEntry(1, at("1")) == moved);
    }

    void refusals_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<Make>("make");
        QTest::addColumn<QString>("warning");
        const auto row = [](const char* name, const char* before, const Make& make, const char* warning) {
            QTest::newRow(name) << QString::fromLatin1(before) << make << QString::fromLatin1(warning);
        };
        const char* const full = "1=a 1.1=b 2=c 3=d";
        row("no list to clear", full, make<ClearPlaylistCommand>(9), "Unable to find playlist");
        row("no list to move", full, make<MovePlaylistCommand>(9, 10),
            "Unable to build redo Patch due failed movePlaylist");
        row("no list", full, make<Add>(9, Add::AtEnd, EntryAddress(), urls("x")), "Unable to find playlist");
        row("no room", full, make<Add>(1, Add::After, at("1"), urls("x")),
            "Failed to create initial address");
        row("before nothing", full, make<Add>(1, Add::Before, EntryAddress(), urls("x")),
            "Failed to create initial address");
        row("nothing to add", full, make<Add>(1, Add::AtEnd, EntryAddress(), urls("")),
            "Failed to create initial address");
        row("nothing to replace", full, make<Add>(1, Add::Replace, at("9"), urls("x")),
            "Replacing first entry failed");
        row("unknown mode", full, make<Add>(1, Add::AddMode(7), at("9"), urls("x")),
            "Unknown add mode! Please add support");
        row("remove", full, make<RemovePlaylistEntryCommand>(1, list("9")),
            "Unable to build redo Patch due failed removeEntry");
        row("move without room", full, make<MovePlaylistEntriesCommand>(1, list("3"), at("1.1")),
            "Failed to create initial address");
        row("move what is not there", full, make<DragPlaylistEntriesCommand>(1, list("9"), at("3")),
            "Failed to move 9 to 4");
        row("replace by what is not there", full, make<ReplacePlaylistEntryCommand>(1, list("9"), at("3")),
            "unable to build redo patch due to failed remoev from entries");
        row("replace what is not there", full, make<ReplacePlaylistEntryCommand>(1, list("3"), at("9")),
            "Unable to build redo patch due failed remove entry");
        row("new list, taken", full, make<NewPlaylistAndMediaCommand>(urls("x"), 1),
            "Unable to build redo Patch due failed addPlaylist");
        row("no list to renumber", full, make<RenumberPlaylistCommand>(9, at("1"), list("1")),
            "Cannot find playlist");
        row("renumber nothing there", full, make<RenumberPlaylistCommand>(1, at("1"), list("9")),
            "Failed to find 9");
        row("renumber onto another", full, make<RenumberPlaylistCommand>(1, at("1"), list("2 3")),
            "Failed to add entry back to playlist");
        row("import twice the same", full,
            make<ImportPlaylistCommand>(1, QString(),
                                        ImportPlaylistCommand::Entries{{at("4"), {}}, {at("4"), {}}}),
            "Unable to import entry 4");
    }

    void refusals()
    {
        QFETCH(QString, before);
        QFETCH(Make, make);
        QFETCH(QString, warning);
        const auto library = libraryOf(before);
        const Json original = library->toJson();
        test::expectWarning(warning);
        if (warning.startsWith(QLatin1String("Unknown add mode")))
            test::expectWarning(QStringLiteral("Failed to create initial address"));
        bool ok = true;
        const auto command = make(library.get(), ok);
        QVERIFY(!ok && !command->initialized());
        QVERIFY(library->toJson() == original);
    }

    /// However often an entry is moved past its neighbours, it arrives, and the others keep their numbers.
    void movesAllTheWay()
    {
        const auto library = libraryOf(QStringLiteral("1=a 2=b 3=c 4=d 5=e"));
        EntryAddress address = at("5");
        for (const char* above : {"4", "3", "2", "1"}) {
            Online<MovePlaylistEntriesCommand> command;
            QVERIFY(command.init(library.get(), 1, {address}, at(above)));
            QCOMPARE(library->applyDiff(command.redoPatch()), 0);
            const auto next = library->getPlaylists().get(1)->getEntries().find(at(above));
            address = std::prev(next)->first;
        }
        QCOMPARE(textOf(*library, 1), QStringLiteral("0.999=e 1=a 2=b 3=c 4=d"));
    }
};

HALCYRA_TEST(TestPlaylistCommands)
#include "test_playlistcommands.moc"
