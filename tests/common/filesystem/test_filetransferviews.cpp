#include "common/filesystem/models/conflictdesk.h"
#include "common/filesystem/models/filesmodel.h"
#include "common/filesystem/models/filesystemdrophandler.h"
#include "common/filesystem/models/operationsmodel.h"
#include "common/filesystem/models/operationtexts.h"
#include "common/notification/notificationmanagerimpl.h"
#include "tests/support/fakefiles.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace vantrel;
using namespace vantrel::test;

class TestFileTransferViews : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_local = std::make_unique<FakeFiles>(QStringLiteral("Local files"));
        m_server = std::make_unique<FakeFiles>(QStringLiteral("Server files"));
        for (const char* path :
             {"/shows/a.mov", "/shows/b.mov", "/shows/Act/", "/shows/notes.txt", "/shows/logo.png"})
            m_local->add(QString::fromLatin1(path));
        m_server->add(QStringLiteral("/media/"));
        m_provider.local = m_local.get();
        m_provider.server = m_server.get();
        m_queue = std::make_unique<FakeOperations>();
    }

    void dropsBecomeOperations_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("json");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("directory");
        QTest::addColumn<QStringList>("calls");
        const auto entry = [](const char* side, const char* path, bool isDirectory) {
            return QStringLiteral(R"({"fileSystem":"%1","name":"x","isDirectory":%2,"path":"%3"})")
                .arg(QLatin1String(side), QLatin1String(isDirectory ? "true" : "false"), QLatin1String(path));
        };
        const auto list = [](const QStringList& entries) { return u'[' + entries.join(u',') + u']'; };
        const QString a = entry("local", "/shows/a.mov", false);
        const QString act = entry("local", "/shows/Act/", true);
        const QStringList none;
        QTest::newRow("up") << "media" << list({a, act}) << "server"
                            << "/media/"
                            << QStringList{"copy /shows/a.mov /media/", "copy /shows/Act/ /media/"};
        QTest::newRow("within one side") << "directory" << list({a}) << "local"
                                         << "/shows/Act/" << QStringList{"move /shows/a.mov /shows/Act/"};
        QTest::newRow("where it is") << "media" << list({a}) << "local"
                                     << "/shows/" << none;
        QTest::newRow("onto itself") << "media" << list({act}) << "local"
                                     << "/shows/Act/" << none;
        QTest::newRow("one of two is no object") << "media" << list({a, "7"}) << "server"
                                                 << "/media/" << none;
        QTest::newRow("a file that is none")
            << "media" << list({a, entry("local", "/shows/Act", false)}) << "server"
            << "/media/" << none;
        QTest::newRow("one is gone") << "media" << list({a, entry("local", "/shows/gone.mov", false)})
                                     << "server"
                                     << "/media/" << none;
        QTest::newRow("an unknown side")
            << "media" << list({entry("cloud", "/shows/a.mov", false)}) << "server"
            << "/media/" << none;
        QTest::newRow("to an unknown side") << "media" << list({a}) << "cloud"
                                            << "/media/" << none;
        QTest::newRow("to no folder") << "media" << list({a}) << "server"
                                      << "/elsewhere/" << none;
        QTest::newRow("another type") << "slot" << list({a}) << "server"
                                      << "/media/" << none;
        QTest::newRow("no list") << "media"
                                 << "{}"
                                 << "server"
                                 << "/media/" << none;
        QTest::newRow("no JSON") << "media"
                                 << "["
                                 << "server"
                                 << "/media/" << none;
    }
    void dropsBecomeOperations()
    {
        QFETCH(QString, type);
        QFETCH(QString, json);
        QFETCH(QString, target);
        QFETCH(QString, directory);
        QFETCH(QStringList, calls);
        FileSystemDropHandler drops(&m_provider, m_queue.get());
        QObject drag;
        drag.setProperty("mimeData", QVariantMap{{"application/type", type}, {"application/json", json}});
        drops.dropDrag(QVariant::fromValue(&drag), target, directory);
        QCOMPARE(m_queue->calls, calls);
    }

    /// What a model hands out is what a drop takes; from the desktop come addresses.
    void modelsFeedDrops()
    {
        FakeHomes homes;
        FilesModel model(m_local.get(), &homes);
        model.setDirectoryPath(QStringLiteral("/shows/"));
        FileSystemDropHandler drops(&m_provider, m_queue.get());
        const QVariant server = QVariant::fromValue<FileSystem*>(m_server.get());
        QVERIFY(drops.dropMimeData(model.mimeOf({0, 2}), server, QStringLiteral("/media/")));
        QVERIFY(drops.moveMimeData(model.mimeOf({1}), server, QStringLiteral("/media/")));
        QVERIFY(drops.dropUrls({QUrl::fromLocalFile("/shows/b.mov")}, server, QStringLiteral("/media/")));
        const QVariant local = QVariant::fromValue<FileSystem*>(m_local.get());
        QVERIFY(drops.dropUrls({QUrl::fromLocalFile("/shows/b.mov")}, local, QStringLiteral("/shows/Act/")));
        QVERIFY(!drops.dropUrls({QUrl("http://a/b.mov")}, server, QStringLiteral("/media/")));
        // No view would show it there.
        const qsizetype told = NotificationManagerImpl::instance()->notifications().size();
        QVERIFY(
            drops.dropUrls({QUrl::fromLocalFile("/shows/notes.txt"), QUrl::fromLocalFile("/shows/logo.png")},
                           server, QStringLiteral("/media/")));
        QCOMPARE(NotificationManagerImpl::instance()->notifications().size(), told + 1);
        QVERIFY(
            !drops.dropUrls({QUrl::fromLocalFile("/shows/notes.txt")}, server, QStringLiteral("/media/")));
        QCOMPARE(m_queue->calls,
                 (QStringList{"copy /shows/Act/ /media/", "copy /shows/b.mov /media/",
                              "move /shows/a.mov /media/", "copy /shows/b.mov /media/",
                              "copy /shows/b.mov /shows/Act/", "copy /shows/logo.png /media/"}));
        // What is put elsewhere on its own side leaves only when it is dragged there.
        m_queue->calls.clear();
        QVERIFY(drops.dropMimeData(model.mimeOf({1}), local, QStringLiteral("/shows/Act/")));
        QVERIFY(drops.copyMimeData(model.mimeOf({1}), local, QStringLiteral("/shows/Act/")));
        QCOMPARE(m_queue->calls,
                 (QStringList{"move /shows/a.mov /shows/Act/", "copy /shows/a.mov /shows/Act/"}));
    }

    void operationsShowWhatTheyDo()
    {
        OperationsModel model(m_queue.get());
        const QAbstractItemModelTester tester(&model);
        QCOMPARE(model.totalProgress(), 1.0);
        start("/shows/a.mov");
        start("/shows/b.mov");
        QCOMPARE(model.count(), 2);
        QCOMPARE(model.openCount(), 2);
        QCOMPARE(text(model, OperationsModel::OperationStateRole), QStringLiteral("Idle"));
        FakeTransfer* first = m_queue->transfer(0);
        first->run();
        QCOMPARE(text(model, OperationsModel::OperationStateRole), QStringLiteral("Running"));
        first->setTotalSizeBytes(1000);
        first->setProgress(0.5);
        QTRY_COMPARE(model.index(0, 0).data(OperationsModel::ProgressRole).toDouble(), 0.5);
        QCOMPARE(model.totalProgress(), 0.25);
        QCOMPARE(model.progressAt(m_local.get(), QStringLiteral("/shows/a.mov")), 0.5);
        QCOMPARE(model.progressAt(m_server.get(), QStringLiteral("/media/a.mov")), 0.5);
        QCOMPARE(model.progressAt(m_local.get(), QStringLiteral("/shows/b.mov")), -1.0);
        first->setVerified(true);
        const auto isVerified = [&] {
            return model.index(0, 0).data(OperationsModel::VerifiedRole).toBool();
        };
        QVERIFY(!isVerified());
        first->finish();
        QCOMPARE(text(model, OperationsModel::OperationStateRole), QStringLiteral("Finished"));
        QVERIFY(isVerified());
        QCOMPARE(text(model, OperationsModel::OutcomeTextRole), QStringLiteral("Done, verified"));
        model.cancel(1);
        QCOMPARE(model.index(1, 0).data(OperationsModel::StageRole).toInt(),
                 int(OperationsModel::Stage::Failed));
        QCOMPARE(model.openCount(), 0);
        QCOMPARE(model.totalProgress(), 1.0);

        model.retry(1); // takes the failed one's place
        QCOMPARE(m_queue->calls.last(), QStringLiteral("copy /shows/b.mov /media/"));
        QCOMPARE(model.count(), 2);
        QCOMPARE(m_queue->transfer(2)->conflictPolicy(), ConflictPolicy::Ask);
        model.clearFinished();
        QCOMPARE(model.count(), 1);
        Q_EMIT m_queue->allOperationsChanged(); // what was taken out stays out
        QCOMPARE(model.count(), 1);
    }

    /// However often a transfer reports, the table hears of it twice a second, and of the last report in any
    /// case.
    void progressIsToldAtItsPace()
    {
        start("/shows/a.mov");
        OperationsModel model(m_queue.get());
        FakeTransfer* transfer = m_queue->transfer(0);
        transfer->run();
        QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
        for (int i = 1; i <= 200; ++i)
            transfer->setProgress(i / 400.0);
        QVERIFY(changes.size() <= 2);
        QTRY_COMPARE(model.index(0, 0).data(OperationsModel::ProgressRole).toDouble(), 0.5);
    }

    void conflictsAreAnsweredForAll()
    {
        ConflictDesk desk(m_queue.get());
        for (const char* path : {"/shows/a.mov", "/shows/b.mov"})
            desk.watch(start(path));
        FakeTransfer* first = m_queue->transfer(0);
        first->run();
        QVERIFY(!desk.isAsking());
        first->askConflict({QStringLiteral("/media/a.mov"), false});
        QVERIFY(desk.isAsking());
        QCOMPARE(desk.name(), QStringLiteral("a.mov"));
        QCOMPARE(desk.othersWaiting(), 1);
        QSignalSpy answered(first, &TransferOperation::conflictAnswered);
        desk.answer(ConflictDesk::Answer::KeepBoth, true);
        QCOMPARE(answered.size(), 1);
        QCOMPARE(answered[0][0].value<ConflictPolicy>(), ConflictPolicy::KeepBoth);
        QVERIFY(!desk.isAsking());
        QCOMPARE(m_queue->transfer(1)->conflictPolicy(), ConflictPolicy::KeepBoth);
    }

    /// Also of a transfer that nobody has brought here.
    void mergingAFolderReplacesNoFiles()
    {
        ConflictDesk desk(m_queue.get());
        const OperationPtr folder = start("/shows/Act/");
        start("/shows/a.mov");
        for (int i : {0, 1})
            m_queue->transfer(i)->setConflictPolicy(ConflictPolicy::Ask);
        QSignalSpy asked(&desk, &ConflictDesk::questionChanged);
        m_queue->transfer(0)->run();
        m_queue->transfer(0)->askConflict({QStringLiteral("/media/Act"), true});
        QCOMPARE(asked.size(), 1);
        desk.answer(ConflictDesk::Answer::Replace, true);
        QVERIFY(!desk.isAsking());
        QCOMPARE(m_queue->transfer(0)->conflictPolicy(), ConflictPolicy::Ask);
        QCOMPARE(m_queue->transfer(1)->conflictPolicy(), ConflictPolicy::Ask);
    }

    void timeLeftHasUnits()
    {
        QCOMPARE(etaText(8), QStringLiteral("8 s"));
        QCOMPARE(etaText(130), QStringLiteral("2 m 10 s"));
        QCOMPARE(etaText(3900), QStringLiteral("1 h 5 m"));
    }

private:
    OperationPtr start(const char* path)
    {
        return m_queue->copy(m_local.get(), QString::fromLatin1(path), m_server.get(),
                             QStringLiteral("/media/"));
    }
    QString text(const OperationsModel& model, int role) const
    {
        return model.index(0, 0).data(role).toString();
    }

    std::unique_ptr<FakeFiles> m_local;
    std::unique_ptr<FakeFiles> m_server;
    FakeProvider m_provider;
    std::unique_ptr<FakeOperations> m_queue;
};

HALCYRA_TEST(TestFileTransferViews)
#include "test_filetransferviews.moc"
