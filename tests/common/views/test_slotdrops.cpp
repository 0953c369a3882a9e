#include "common/media/items/guimediaslot.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/qml/dropdialog.h"
#include "common/qml/qmlmanager.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/views/slotdrops.h"
#include "tests/support/livesession.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>
#include <QUrl>
#include <QWidget>

namespace vantrel::test {

/// What the desktop's file manager drags onto the slots of a live server.
class TestSlotDrops : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with ombra in it");
        allowWarnings(QStringLiteral("Getting system property failed"));
        allowWarnings(QStringLiteral("Failed to get media library"));
    }
    void cleanupTestCase() { QMLManager::instance()->deinitialize(); }

    void bringsLocalFiles()
    {
        OmbraProcess server;
        QVERIFY(server.start());
        LiveSession live;
        QVERIFY(live.open(server));
        Session* const session = live.session.get();
        ImplMediaCollectionManager& manager = live.manager;
        const MediaLibraryProvider* const library = live.library();

        QTemporaryDir local;
        for (const char* name : {"logo.png", "shots/s.0001.png", "shots/s.0002.png", "notes.txt"})
            makePicture(local.filePath(QString::fromLatin1(name)));
        QWidget window;
        SlotDrops drops(session, &manager, &window);
        drops.setCollection(7);
        const auto drop = [&](const QStringList& names, int slot) {
            QMimeData data;
            QList<QUrl> urls;
            for (const QString& name : names)
                urls.append(QUrl::fromLocalFile(local.filePath(name)));
            data.setUrls(urls);
            if (!drops.begin(&data))
                return false;
            drops.aim(slot);
            drops.drop(slot);
            drops.end();
            return true;
        };
        const qsizetype told = NotificationManagerImpl::instance()->notifications().size();
        const int steps = session->getQUndoStack()->index();
        // Nothing is stored or sent before the operator has seen it.
        QVERIFY(drop({QStringLiteral("logo.png"), QStringLiteral("notes.txt")}, 3));
        QTRY_VERIFY(reviewed());
        reviewed()->reject();
        QTRY_VERIFY(!reviewed());
        QCOMPARE(session->getQUndoStack()->index(), steps);
        QVERIFY(!QFile::exists(server.mediaFolder() + QStringLiteral("/logo.png")));

        QVERIFY(drop({QStringLiteral("logo.png"), QStringLiteral("notes.txt")}, 3));
        QVERIFY(approve());
        QTRY_VERIFY(library->slot({7, 3}));
        QCOMPARE(session->getQUndoStack()->index(), steps + 1);
        QTRY_VERIFY(library->slot({7, 3})->isPlayable()); // the server has it
        QTRY_VERIFY(drops.arrivals().isEmpty());
        QVERIFY(QFile::exists(server.mediaFolder() + QStringLiteral("/logo.png")));
        QTRY_COMPARE(NotificationManagerImpl::instance()->notifications().size(), told + 1); // of notes.txt

        // A folder becomes what it holds once it is there.
        QVERIFY(drop({QStringLiteral("shots")}, 5));
        QVERIFY(approve());
        QTRY_VERIFY(library->slot({7, 5}));
        QTRY_VERIFY(library->slot({7, 5})->isPlayable());
        QCOMPARE(library->slot({7, 5})->lastFrame().value_or(0), 2);

        // What has only its name is not played in its place.
        makePicture(local.filePath(QStringLiteral("logo.png")));
        QVERIFY(drop({QStringLiteral("logo.png")}, 9));
        QTRY_COMPARE(NotificationManagerImpl::instance()->notifications().size(), told + 2);
        QVERIFY(!library->slot({7, 9}));

        // Somebody else was faster with the name: their file is not played in the place of this one.
        QFile late(local.filePath(QStringLiteral("late.mov"))); // takes a while
        QVERIFY(late.open(QIODevice::WriteOnly) && late.resize(200 * 1024 * 1024));
        QVERIFY(drop({QStringLiteral("late.mov")}, 12));
        QTRY_VERIFY(library->slot({7, 12}));
        QVERIFY(QFile::copy(local.filePath(QStringLiteral("logo.png")),
                            server.mediaFolder() + QStringLiteral("/late.mov")));
        QTRY_VERIFY(drops.arrivals().isEmpty());
        QTRY_VERIFY(library->slot({7, 12})->contentUrl().isEmpty());
        QVERIFY(NotificationManagerImpl::instance()->notifications().last()->details().contains(
            QStringLiteral("Slot 12 of collection 7 was cleared")));
        session->getQUndoStack()->undo();
        session->getQUndoStack()->undo();
        QTRY_VERIFY(!library->slot({7, 12}));

        // Slots move in one edit, also onto each other's places.
        const auto nameAt = [library](int slot) {
            const auto one = library->slot({7, slot});
            return one ? one->name() : QString();
        };
        const QString shots = nameAt(5);
        QMimeData two;
        two.setData(QStringLiteral("application/type"), "slot");
        two.setData(QStringLiteral("application/json"), R"({"slots":[3,5]})");
        QVERIFY(drops.begin(&two));
        drops.drop(5);
        drops.end();
        QTRY_COMPARE(nameAt(6), shots);
        QCOMPARE(nameAt(5), QStringLiteral("logo.png"));
        QVERIFY(library->slot({7, 3})->contentUrl().isEmpty());
        session->getQUndoStack()->undo();
        QTRY_VERIFY(nameAt(3) == QStringLiteral("logo.png") && nameAt(5) == shots && !library->slot({7, 6}));

        session->getQUndoStack()->undo();
        session->getQUndoStack()->undo();
        QTRY_VERIFY(!library->slot({7, 3}) && !library->slot({7, 5}));
    }

private:
    static DropDialog* reviewed()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* dialog = qobject_cast<DropDialog*>(widget);
            if (dialog && dialog->isVisible())
                return dialog;
        }
        return nullptr;
    }
    static bool approve()
    {
        if (!QTest::qWaitFor([] { return reviewed() && reviewed()->acceptButton()->isEnabled(); }))
            return false;
        reviewed()->acceptButton()->click();
        return QTest::qWaitFor([] { return !reviewed(); });
    }
    static void makePicture(const QString& path)
    {
        QDir().mkpath(QFileInfo(path).path());
        QImage picture(64, 36, QImage::Format_RGB32);
        picture.fill(Qt::red);
        picture.save(path, "PNG");
    }
};

} // namespace vantrel::test

using vantrel::test::TestSlotDrops;
HALCYRA_TEST(TestSlotDrops)
#include "test_slotdrops.moc"
