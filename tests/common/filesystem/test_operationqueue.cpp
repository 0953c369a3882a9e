#include "common/filesystem/schedule/filesystemoperationsrunner.h"
#include "common/filesystem/schedule/operationfactory.h"
#include "common/notification/notificationmanagerimpl.h"
#include "tests/common/filesystem/puppetfilesystem.h"
#include "tests/support/testmain.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

using namespace vantrel;
using namespace vantrel::test;

using Fate = PuppetFileSystem::Fate;
using State = RunnableOperation::OperationState;

/// The queue, and the runner of operations on directories, between two trees in memory.
class TestOperationQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        allowWarnings(QStringLiteral("Aborting rest of the operations"));
        m_queue.reset();
        m_from = std::make_unique<PuppetFileSystem>();
        m_to = std::make_unique<PuppetFileSystem>();
        m_queue = std::make_unique<FileSystemOperationsRunner>(&m_factory);
        m_from->addDirectory(QStringLiteral("/show"));
        for (int i = 0; i < 10; ++i)
            m_from->add(QStringLiteral("/show/%1.mov").arg(i), 100);
        NotificationManagerImpl::instance()->clear();
    }

    void goesOnAfterAFailure()
    {
        m_to->fate = [](const QString& path) {
            return path.contains(QStringLiteral("0.mov")) ? Fate::Fails : Fate::Passes;
        };
        const OperationPtr first = copy(QStringLiteral("/show/0.mov"), QStringLiteral("/<b>0.mov"));
        const OperationPtr second = copy(QStringLiteral("/show/1.mov"), QStringLiteral("/1.mov"));
        const OperationPtr third = copy(QStringLiteral("/show/2.mov"), QStringLiteral("/2.mov"));
        QVERIFY(m_to->done.isEmpty()); // nothing starts under its caller's hands
        QElapsedTimer clock;
        clock.start();
        QTRY_VERIFY(third->hasFinished());
        QVERIFY2(clock.elapsed() < 900, "waits for the tick of the clock between two");
        QCOMPARE(stateOf(first), State::Failed);
        QCOMPARE(stateOf(second), State::Passed);
        QCOMPARE(m_queue->finishedOperations().size(), 3);
        const auto told = NotificationManagerImpl::instance()->notifications();
        QCOMPARE(told.size(), 1);
        QCOMPARE(told.first()->title(), QStringLiteral("<b>Transfer operation failed</b>"));
        QVERIFY2(told.first()->details().startsWith(
                     QStringLiteral("From <code>/show/0.mov</code> to <code>/&lt;b&gt;0.mov</code>\n<b>File "
                                    "transfer aborted</b> at 0% of")),
                 qPrintable(told.first()->details()));
    }

    void waitsForTheServer()
    {
        m_to->setReady(false);
        const OperationPtr waiting = copy(QStringLiteral("/show/0.mov"), QStringLiteral("/0.mov"));
        const OperationPtr canceled = copy(QStringLiteral("/show/1.mov"), QStringLiteral("/1.mov"));
        QCoreApplication::processEvents();
        QCOMPARE(m_queue->pendingOperations().size(), 2);
        qSharedPointerCast<RunnableOperation>(canceled)->abort();
        QElapsedTimer clock;
        clock.start();
        m_to->setReady(true);
        QTRY_VERIFY(waiting->hasFinished());
        QVERIFY(clock.elapsed() < 900);
        QCOMPARE(m_to->done, QStringList{QStringLiteral("/0.mov")});
        QVERIFY(NotificationManagerImpl::instance()->notifications().isEmpty());
    }

    void refusesWhatIsNothing()
    {
        QVERIFY(!m_queue->copy(m_from.get(), QStringLiteral("/show/../show/0.mov"), m_from.get(),
                               QStringLiteral("/show/0.mov")));
        QVERIFY(!m_queue->rename(m_from.get(), QStringLiteral("/show/"), QStringLiteral("show")));
        expectWarning(QStringLiteral("Unable to create remove operation for unknown"));
        QVERIFY(!m_queue->remove(m_from.get(), QStringLiteral("/none")));
        QVERIFY(!m_queue->startOperation({}));
        QVERIFY(m_queue->allOperations().isEmpty());
        const OperationPtr rename =
            m_queue->rename(m_from.get(), QStringLiteral("/show"), QStringLiteral("new"));
        QCOMPARE(qSharedPointerCast<ModifyOperation>(rename)->absolutePath(), QStringLiteral("/new"));
        QCOMPARE(m_queue->findOperations(m_from.get(), QStringLiteral("/show")), OperationPtrList{rename});
    }

    void stopsInTheMiddleOfATree()
    {
        m_to->fate = [](const QString& path) {
            return path.endsWith(QStringLiteral("/4.mov")) ? Fate::Fails : Fate::Passes;
        };
        const OperationPtr tree = copy(QStringLiteral("/show"), QStringLiteral("/"));
        QTRY_VERIFY(tree->hasFinished());
        QCOMPARE(stateOf(tree), State::Failed);
        const QString said = qSharedPointerCast<RunnableOperation>(tree)->errors().first().message;
        QVERIFY2(said.contains(QStringLiteral("interrupted</b> at 40% of")), qPrintable(said));
        QStringList expected{QStringLiteral("/show")};
        for (int i = 0; i <= 4; ++i)
            expected << QStringLiteral("/show/%1.mov").arg(i);
        QCOMPARE(m_to->done, expected);
        // Once more: what has come over is left out, and its directory is no conflict. What only looks like
        // it is.
        m_to->fate = [](const QString&) { return Fate::Passes; };
        m_to->addDirectory(QStringLiteral("/show"));
        for (const int i : {0, 1, 3, 7})
            m_to->add(QStringLiteral("/show/%1.mov").arg(i), 100);
        m_to->done.clear();
        const OperationPtr retry = m_queue->retryOperation(tree);
        QTRY_VERIFY(retry->hasFinished());
        QCOMPARE(stateOf(retry), State::Passed);
        expected = {QStringLiteral("/show")};
        for (const int i : {2, 4, 5, 6, 7, 8, 9})
            expected << QStringLiteral("/show/%1.mov").arg(i);
        QCOMPARE(m_to->done, expected);
        QCOMPARE(qSharedPointerCast<TransferOperation>(retry)->totalSizeBytes(), 1000ULL);
        QVERIFY(!m_queue->retryOperation(retry));
    }

    void treesMeetWhatIsThere_data()
    {
        QTest::addColumn<ConflictPolicy>("policy");
        QTest::addColumn<QString>("first");
        QTest::addColumn<State>("state");
        QTest::newRow("refuse") << ConflictPolicy::Refuse << QString() << State::Failed;
        QTest::newRow("skip") << ConflictPolicy::Skip << QString() << State::Passed;
        QTest::newRow("merge") << ConflictPolicy::Replace << QStringLiteral("/show") << State::Passed;
        QTest::newRow("keep both") << ConflictPolicy::KeepBoth << QStringLiteral("/show (2)")
                                   << State::Passed;
    }
    void treesMeetWhatIsThere()
    {
        QFETCH(ConflictPolicy, policy);
        m_to->addDirectory(QStringLiteral("/show"));
        const auto tree =
            qSharedPointerCast<TransferOperation>(copy(QStringLiteral("/show"), QStringLiteral("/")));
        tree->setConflictPolicy(ConflictPolicy::Ask);
        QTRY_VERIFY(tree->conflict());
        QVERIFY(m_to->done.isEmpty());
        tree->answerConflict(policy, true);
        QTRY_VERIFY(tree->hasFinished());
        QTEST(tree->state(), "state");
        QTEST(m_to->done.value(0), "first");
        QFETCH(QString, first);
        QCOMPARE(m_to->done.value(1), first.isEmpty() ? QString() : first + QStringLiteral("/0.mov"));
        QCOMPARE(m_to->done.size(), first.isEmpty() ? 0 : 11);
    }

    /// A part that has gone before its turn is no part that is done.
    void tellsOfPartsThatHaveGone()
    {
        allowWarnings(QStringLiteral("Unable to create copy operation for unknown file type"));
        m_from->vanish(QStringLiteral("/show/3.mov"));
        const OperationPtr tree = copy(QStringLiteral("/show"), QStringLiteral("/"));
        QTRY_COMPARE(stateOf(tree), State::Failed);
        QVERIFY(m_to->done.isEmpty());
        QCOMPARE(qSharedPointerCast<RunnableOperation>(tree)->errors().first().message,
                 QStringLiteral("<code>/show/3.mov</code> is not there any more"));
    }

    /// What a retry finds under the name that the first attempt has met is nobody's that it knows.
    void retryDoesNotTakeWhatItWasRefused()
    {
        m_to->addDirectory(QStringLiteral("/show"));
        const OperationPtr tree = copy(QStringLiteral("/show"), QStringLiteral("/"));
        QTRY_COMPARE(stateOf(tree), State::Failed);
        const OperationPtr retry = m_queue->retryOperation(tree);
        QTRY_COMPARE(stateOf(retry), State::Failed);
        QVERIFY(m_to->done.isEmpty());
    }

    void linksAreNotFollowed()
    {
        m_from->addDirectory(QStringLiteral("/show/link"));
        m_from->makeLink(QStringLiteral("/show/link"));
        m_from->add(QStringLiteral("/show/link/far.mov"), 100);
        QStringList moved;
        const auto tree =
            m_queue->move(m_from.get(), QStringLiteral("/show"), m_to.get(), QStringLiteral("/"));
        m_to->onTransfer = [&](const TransferOperation& part) {
            if (part.transferType() == TransferOperation::Move)
                moved << part.from().fullPath;
        };
        QTRY_VERIFY(tree->hasFinished());
        QCOMPARE(stateOf(tree), State::Passed);
        QVERIFY(m_to->done.contains(QStringLiteral("/show/link/far.mov")));
        QCOMPARE(moved.size(), 10);
        QVERIFY(!moved.contains(QStringLiteral("/show/link/far.mov")));
        QCOMPARE(m_from->done, (QStringList{QStringLiteral("/show/link/"), QStringLiteral("/show/")}));
        m_from->done.clear();
        const OperationPtr removal = m_queue->remove(m_from.get(), QStringLiteral("/show"));
        QTRY_VERIFY(removal->hasFinished());
        QCOMPARE(m_from->done.first(), QStringLiteral("/show/link/"));
        QVERIFY(!m_from->done.contains(QStringLiteral("/show/link/far.mov")));
    }

    void doesNotWaitForWhatIsGivenUp()
    {
        m_to->setReady(false);
        const OperationPtr first = copy(QStringLiteral("/show/0.mov"), QStringLiteral("/0.mov"));
        const OperationPtr removal = m_queue->remove(m_from.get(), QStringLiteral("/show/1.mov"));
        QCoreApplication::processEvents();
        QVERIFY(!removal->hasFinished());
        Q_EMIT m_to->givenUp(QStringLiteral("gone"));
        QCOMPARE(stateOf(first), State::Failed);
        QCOMPARE(qSharedPointerCast<RunnableOperation>(first)->errors().first().message,
                 QStringLiteral("gone"));
        QTRY_COMPARE(stateOf(removal), State::Passed);
    }

    void abortsOnce()
    {
        m_to->fate = [](const QString& path) {
            return path.endsWith(QStringLiteral("/2.mov")) ? Fate::Waits : Fate::Passes;
        };
        const auto tree =
            qSharedPointerCast<TransferOperation>(copy(QStringLiteral("/show"), QStringLiteral("/")));
        QTRY_COMPARE(m_to->done.size(), 4);
        QSignalSpy failed(tree.data(), &RunnableOperation::operationFailed);
        tree->abort();
        tree->abort();
        QTRY_COMPARE(tree->state(), State::Failed);
        QCOMPARE(failed.size(), 1);
        QVERIFY(tree->errors().first().message.startsWith(
            QStringLiteral("<b>Directory transfer interrupted</b> at")));
        QCOMPARE(m_to->done.size(), 4);
    }

    void removesFromBelow()
    {
        m_from->addDirectory(QStringLiteral("/show/empty"));
        const OperationPtr removal = m_queue->remove(m_from.get(), QStringLiteral("/show"));
        QTRY_VERIFY(removal->hasFinished());
        QCOMPARE(stateOf(removal), State::Passed);
        QCOMPARE(m_from->done.first(), QStringLiteral("/show/empty/"));
        QCOMPARE(m_from->done.last(), QStringLiteral("/show"));
        QCOMPARE(m_from->done.size(), 12);
    }

private:
    static State stateOf(const OperationPtr& operation)
    {
        return qSharedPointerCast<RunnableOperation>(operation)->state();
    }
    OperationPtr copy(const QString& from, const QString& to)
    {
        return m_queue->copy(m_from.get(), from, m_to.get(), to);
    }

    OperationFactory m_factory;
    std::unique_ptr<PuppetFileSystem> m_from;
    std::unique_ptr<PuppetFileSystem> m_to;
    std::unique_ptr<FileSystemOperationsRunner> m_queue;
};

HALCYRA_TEST(TestOperationQueue)
#include "test_operationqueue.moc"
