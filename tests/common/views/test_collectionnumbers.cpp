#include "common/media/edit/implmediacollectionmanager.h"
#include "common/media/edit/slot/addmediatocollectioncommand.h"
#include "common/media/edit/slot/movecollectioncommand.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/models/collectionselectormodel.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/textinputdialog.h"
#include "common/views/collectionnumbers.h"
#include "common/views/media/collectionpanes.h"
#include "common/views/mediapanelwidget.h"
#include "common/views/slotclipboard.h"
#include "common/views/slotdrops.h"
#include "common/views/slotmove.h"
#include "tests/common/command/scriptedlibrary.h"
#include "tests/support/librarymaker.h"
#include "tests/support/testmain.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <algorithm>

namespace vantrel::test {

namespace {

/// A server with collections 1 to 3 of three slots each, and others who edit them.
class Shared : public ScriptedLibrary
{
public:
    Shared() { *library = *makeLibrary(3, 3); }

    template <typename Edit>
    void others(const Edit& edit)
    {
        const Json before = library->toJson();
        edit(*library);
        Patch patch;
        Patch::diff(before, library->toJson(), patch);
        tell(patch);
    }
    /// Behind a lost link.
    template <typename Edit>
    bool unheard(const Edit& edit)
    {
        edit(*library);
        api()->requestMediaLibrary();
        return QTest::qWaitFor([this] { return api()->isCurrent(); }, longestWait);
    }
    Session* session() const { return peer.session; }
    std::string urlOf(int collection, int slot) const
    {
        const MediaSlot* const found = std::as_const(*library).findSlot(collection, slot);
        return found ? found->getUrl() : std::string();
    }
};

void move(MediaLibrary& library, int from, int to)
{
    library.insertMediaCollection(to, *std::as_const(library).findCollection(from), true);
    library.removeCollection(from);
}

void putAnother(MediaLibrary& library, int number)
{
    MediaCollection other("Another");
    other.insertMediaSlot(1, makeSlot("another"), true);
    library.insertMediaCollection(number, other, true);
}

bool wasTold(const QString& text)
{
    const auto all = NotificationManagerImpl::instance()->notifications();
    return std::ranges::any_of(all, [&](const auto& one) { return one->details().contains(text); });
}

} // namespace

class TestCollectionNumbers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_server.emplace().connect()); }
    void cleanup() { m_server.reset(); }

    /// Never another one that has its number by now.
    void oneThatIsGoneIsNone()
    {
        CollectionNumbers numbers(m_server->session());
        const CollectionNumbers::Number two = numbers.follow(2);
        const MediaCollection kept = *std::as_const(*m_server->library).findCollection(2);
        m_server->others([](MediaLibrary& library) { library.findCollection(2)->setName("Renamed"); });
        QCOMPARE(*two, 2);
        m_server->others([](MediaLibrary& library) { move(library, 2, 8); });
        QCOMPARE(*two, 8);
        m_server->others([](MediaLibrary& library) { library.removeCollection(8); });
        QCOMPARE(*two, -1);
        m_server->others([](MediaLibrary& library) { putAnother(library, 8); });
        QCOMPARE(*two, -1);
        QCOMPARE(*numbers.follow(8), 8);
        m_server->others([&kept](MediaLibrary& library) {
            library.insertMediaCollection(5, kept, true);
            library.findCollection(5)->setName("Renamed");
        });
        QCOMPARE(*two, 5); // its removal was undone
    }

    /// Those of this window from the moment in which they leave, also behind others that are under way.
    void ownMovesAreFollowedAtOnce()
    {
        CollectionNumbers numbers(m_server->session());
        const CollectionNumbers::Number one = numbers.follow(1), three = numbers.follow(3);
        m_server->isMute = true;
        QVERIFY(m_server->run<AddMediaToCollectionCommand>(3, 5, QList<GuiMediaSlot>(2)));
        QVERIFY(m_server->run<MoveCollectionCommand>(3, 1)); // whose numbers all exist before and after
        QTRY_COMPARE(*three, 1);
        QCOMPARE(*one, 2);
        QVERIFY(!m_server->isIdle());
    }

    void whatHappenedUnheardIsToldApart()
    {
        CollectionNumbers numbers(m_server->session());
        const CollectionNumbers::Number one = numbers.follow(1);
        const CollectionNumbers::Number two = numbers.follow(2);
        const CollectionNumbers::Number three = numbers.follow(3);
        QVERIFY(m_server->unheard([](MediaLibrary& library) {
            library.copyCollection(2, 6); // as it was, while the original goes on
            library.findCollection(2)->insertMediaSlot(9, makeSlot("nine"), true);
            library.removeCollection(1);
            putAnother(library, 1);
            move(library, 3, 4);
        }));
        QTRY_COMPARE(*three, 4);
        QCOMPARE(*two, 2);
        QCOMPARE(*one, -1);
    }

    void aQuestionStaysWithItsCollection()
    {
        MediaPanelWidget panel(m_server->session());
        panel.selectCollection(2);
        const QList<QAction*> actions = panel.findChildren<QAction*>();
        const auto remove =
            std::ranges::find(actions, QStringLiteral("Remove collection..."), &QAction::text);
        QVERIFY(remove != actions.end());
        (*remove)->trigger();
        auto* const dialog = panel.findChild<ZTDialog*>(QStringLiteral("MediaPanel-remove-collection"));
        QVERIFY(dialog);
        m_server->others([](MediaLibrary& library) { move(library, 2, 8); });
        QCOMPARE(dialog->title(), QStringLiteral("Remove collection 8?"));
        m_server->others([](MediaLibrary& library) { library.removeCollection(8); });
        m_server->others([](MediaLibrary& library) { putAnother(library, 8); });
        QCOMPARE(dialog->title(), QStringLiteral("The collection is gone"));
        dialog->acceptButton()->click();
        QVERIFY(wasTold(QStringLiteral("The collection is not in the library any more.")));
        QVERIFY(m_server->isIdle());
    }

    void aMoveStaysWithItsCollection()
    {
        QWidget window;
        ImplMediaCollectionManager manager;
        SlotDrops drops(m_server->session(), &manager, &window);
        drops.setCollection(2);
        TextInputDialog* const dialog =
            askWhereToMove(&drops, m_server->session()->mediaLibraryModel(), 2, {1, 3}, &window);
        m_server->others([](MediaLibrary& library) {
            move(library, 2, 8);
            putAnother(library, 2);
        });
        dialog->setValue(0, QStringLiteral("11"));
        dialog->acceptButton()->click();
        QTRY_COMPARE(m_server->urlOf(8, 12), std::string("file:///clips/c2s3.mp4"));
        QCOMPARE(m_server->urlOf(8, 1), std::string());
        QCOMPARE(m_server->urlOf(2, 1), std::string("file:///clips/another.mp4"));
    }

    /// All panes and what is chosen in the list of collections.
    void panesFollowWhatOthersPutInOrder()
    {
        Session* const session = m_server->session();
        CollectionNumbers numbers(session);
        CollectionSelectorModel chosen(session->mediaLibraryProvider());
        CollectionPanes panes(session->mediaLibraryModel(), numbers, {});
        connect(&panes, &CollectionPanes::currentRenumbered, &chosen, &CollectionSelectorModel::selectComing);
        connect(&chosen, &CollectionSelectorModel::selectionChanged, &panes,
                [&panes](int collection) { panes.slotModel()->setCollection(collection); });
        while (panes.count() > 1)
            panes.close(0);
        panes.slotModel()->setCollection(3);
        panes.open(2);
        chosen.setSelectedCollectionIndex(2);
        QCOMPARE(panes.slotModel()->collection(), 2);
        m_server->others([](MediaLibrary& library) {
            move(library, 2, 8);
            move(library, 3, 2);
        });
        QCOMPARE(chosen.selectedCollectionIndex(), 8);
        QCOMPARE(panes.slotModel()->collection(), 8);
        panes.setCurrent(0);
        QCOMPARE(panes.slotModel()->collection(), 2);
    }

    /// What the server refuses is not lost: it can be pasted again.
    void theCutIsKeptUntilItIsTaken()
    {
        QWidget window;
        ImplMediaCollectionManager manager;
        SlotDrops drops(m_server->session(), &manager, &window);
        drops.setCollection(2);
        copySlots(*m_server->session()->mediaLibraryModel(), 1, {1, 2}, true);
        m_server->refusal = 507;
        expectWarning(QStringLiteral("Redo failed! the disk is full"));
        pasteSlots(&drops, 7);
        pasteSlots(&drops, 7); // by the same key, held
        QVERIFY(wasTold(QStringLiteral("They are on their way already.")));
        QTRY_VERIFY(m_server->isIdle());
        QVERIFY(m_server->urlOf(2, 7).empty());
        m_server->refusal = 0;
        pasteSlots(&drops, 7);
        QTRY_COMPARE(m_server->urlOf(2, 8), std::string("file:///clips/c1s2.mp4"));
        const auto isCleared = [] {
            const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
            return !data || data->formats().isEmpty();
        };
        QTRY_VERIFY(isCleared());
    }

private:
    std::optional<Shared> m_server;
};

} // namespace vantrel::test

using vantrel::test::TestCollectionNumbers;
HALCYRA_TEST(TestCollectionNumbers)
#include "test_collectionnumbers.moc"
