#include "common/filesystem/operations/asyncfilesystemreader.h"
#include "common/import/imagesequencecreator.h"
#include "common/import/mediadrop.h"
#include "common/media/items/guimediacollection.h"
#include "tests/support/livesession.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QImage>
#include <QTest>
#include <QUndoStack>

namespace vantrel::test {

/// A folder of a live server dropped onto a collection, and taken back.
class TestLiveDrop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with ombra in it");
    }

    void isOneStepOfUndo()
    {
        allowWarnings(QStringLiteral("Getting system property failed"));
        allowWarnings(QStringLiteral("Failed to get media library"));
        OmbraProcess server;
        QVERIFY(QDir(server.mediaFolder()).mkpath(QStringLiteral("in")));
        QImage red(64, 36, QImage::Format_RGB32);
        red.fill(Qt::red);
        for (const char* name : {"s.0001.png", "s.0002.png", "s.0005.png", "logo.png"})
            QVERIFY(red.save(server.mediaFolder() + QStringLiteral("/in/") + QString::fromLatin1(name)));
        QVERIFY(server.start());
        LiveSession live;
        QVERIFY(live.open(server));
        Session* const session = live.session.get();
        ImplMediaCollectionManager& manager = live.manager;
        const MediaLibraryProvider* const library = live.library();
        GuiMediaSlot old;
        old.setName(QStringLiteral("old"));
        old.setContentUrl(QUrl::fromLocalFile(QStringLiteral("/in/logo.png")));
        manager.addMedias(7, 1, {old, old});
        const auto names = [library] {
            QStringList all;
            for (int slot = 1; slot <= 4; ++slot) {
                const auto one = library->slot({7, slot});
                all += one ? one->name() : QString();
            }
            return all;
        };
        const QStringList before{QStringLiteral("old"), QStringLiteral("old"), QString(), QString()};
        QTRY_COMPARE(names(), before);

        AsyncFileSystemReader reader;
        ImageSequenceCreator creator(session, &manager);
        MediaDrop drop(&reader, &creator, 7, 2); // slot 1 moves onto what was in 2
        drop.setCollectionSlots({1});
        drop.requestAsynchronously({QStringLiteral("/in/"), FileSystem::Directory},
                                   session->serverFilesModel()->fileSystem());
        QTRY_VERIFY(drop.isReady());
        QCOMPARE(drop.faults(), QStringList());
        QUndoStack* const stack = session->getQUndoStack();
        const int steps = stack->index();
        drop.save();
        QCOMPARE(stack->index(), steps + 1);
        const QStringList after{QString(), QStringLiteral("old"), QStringLiteral("s.%04d.png"),
                                QStringLiteral("logo.png")};
        QTRY_COMPARE(names(), after);
        QTRY_VERIFY(library->slot({7, 3})->isPlayable()); // the server has found its pictures
        QCOMPARE(library->slot({7, 3})->lastFrame().value_or(0), 5);
        stack->undo();
        QTRY_COMPARE(names(), before);
        stack->redo();
        QTRY_COMPARE(names(), after);

        manager.beginStep(QStringLiteral("nothing"));
        manager.endStep();
        QCOMPARE(stack->index(), steps + 1);
    }
};

} // namespace vantrel::test

using vantrel::test::TestLiveDrop;
HALCYRA_TEST(TestLiveDrop)
#include "test_livedrop.moc"
