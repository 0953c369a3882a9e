#include "common/media/library/librarychanges.h"
#include "tarn/json/patch.h"
#include "tests/support/testmain.h"

#include <QTest>

using namespace vantrel;

namespace {

void note(QStringList& list, const char* name, const std::set<int>& numbers)
{
    for (const int number : numbers)
        list.append(QStringLiteral("%1 %2").arg(QLatin1String(name)).arg(number));
}

void note(QStringList& list, const char* name, const std::set<LibraryChanges::Entry>& entries)
{
    for (const auto& [playlist, entry] : entries)
        list.append(QStringLiteral("%1 %2/%3")
                        .arg(QLatin1String(name))
                        .arg(playlist)
                        .arg(QString::fromStdString(entry.toString(true))));
}

void note(QStringList& list, const char* name, const std::set<MediaAddress>& media)
{
    for (const auto& [collection, slot] : media)
        list.append(QStringLiteral("%1 %2/%3").arg(QLatin1String(name)).arg(collection).arg(slot));
}

QString summary(const LibraryChanges& changes)
{
    QStringList list;
    note(list, "c~", changes.collectionsChanged);
    note(list, "c-", changes.collectionsRemoved);
    note(list, "c+", changes.collectionsAdded);
    note(list, "m+", changes.mediaAdded);
    note(list, "m~", changes.mediaChanged);
    note(list, "m-", changes.mediaRemoved);
    note(list, "p+", changes.playlistsAdded);
    note(list, "p~", changes.playlistsChanged);
    note(list, "p-", changes.playlistsRemoved);
    note(list, "e+", changes.entriesAdded);
    note(list, "e~", changes.entriesChanged);
    note(list, "e-", changes.entriesRemoved);
    return list.join(u' ');
}

} // namespace

class TestLibraryChanges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void classification_data();
    void classification();
};

void TestLibraryChanges::classification_data()
{
    QTest::addColumn<QString>("ops"); // "+path", "~path" or "-path", blank between
    QTest::addColumn<QString>("changes");
    const auto row = [](const char* ops, const char* changes) {
        QTest::newRow(ops) << QString::fromLatin1(ops) << QString::fromLatin1(changes);
    };
    row("+/playlists/2", "p+ 2");
    row("-/playlists/2", "p- 2");
    row("~/playlists/2/name", "p~ 2");
    row("+/playlists/2/entries/5.1", "e+ 2/5.1");
    row("+/playlists/2/entries/5", "e+ 2/5");
    row("~/playlists/2/entries/5/endAction", "p~ 2 e~ 2/5");
    row("-/playlists/2/entries/5", "e- 2/5");
    row("+/collections/3", "c+ 3");
    row("-/collections/3", "c- 3");
    row("~/collections/3/name", "c~ 3");
    row("+/collections/3/slots/4", "m+ 3/4");
    row("-/collections/3/slots/4", "m- 3/4");
    row("~/collections/3/slots/4/outpoint", "c~ 3 m~ 3/4");
    // What is below a slot or an entry
    row("-/collections/3/slots/4/outpoint", "");
    row("+/collections/3/slots/4/outpoint", "m+ 3/4");
    row("-/playlists/2/entries/5/endAction", "e- 2/5");
    row("+/playlists/2/entries/5/endAction", "e+ 2/5");
    // Members that only a newer server knows
    row("-/collections/3/colour", "");
    row("-/collections/3/slots/4/tags/slots/4", "");
    row("-/collections/3/slots/4/imageSequence/slots/4", "");
    row("-/playlists/2/locked", "");
    row("-/playlists/2/entries/5/note", "");
    row("+/collections/3/slots/4/imageSequence/playlists/2", "m+ 3/4");
    row("-/venue/playlists/2", "");
    // Once each, in order
    row("~/collections/3/slots/4/inpoint ~/collections/3/slots/4/name ~/collections/1/name",
        "c~ 1 c~ 3 m~ 3/4");
    row("+/playlists/1/entries/10 +/playlists/1/entries/9.5 +/playlists/1/entries/9",
        "e+ 1/9 e+ 1/9.5 e+ 1/10");
    // Neither
    row("~/name", "");
    row("~/collections", "");
    row("+/collections/x/slots/1", "");
    row("+/collections/99999999999", "");
    row("?/collections/3", "");
}

void TestLibraryChanges::classification()
{
    QFETCH(QString, ops);
    Patch patch;
    for (const QString& text : ops.split(u' ')) {
        PatchOp op;
        op.op = text.startsWith(u'+')   ? PatchOpType::Add
                : text.startsWith(u'-') ? PatchOpType::Remove
                : text.startsWith(u'~') ? PatchOpType::Replace
                                        : PatchOpType::Test;
        op.path = Path(text.mid(1).toStdString());
        patch.append(op);
    }
    QTEST(summary(LibraryChanges::fromPatch(patch)), "changes");
}

HALCYRA_TEST(TestLibraryChanges)
#include "test_librarychanges.moc"
