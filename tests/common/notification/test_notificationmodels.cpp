#include "common/notification/notificationmanagerimpl.h"
#include "common/notification/notificationstatusmodel.h"
#include "common/notification/pendingnotificationmodel.h"
#include "common/notification/sortednotificationmodel.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>

namespace vantrel::test {

/// The cuts of a manager's list that views show.
class TestNotificationModels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_manager = std::make_unique<NotificationManagerImpl>();
        m_model = std::make_unique<NotificationModel>();
        m_tester = std::make_unique<QAbstractItemModelTester>(
            m_model.get(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        m_model->setManager(m_manager.get());
    }
    void cleanup() { m_tester.reset(); }

    /// What views keep of rows goes with a reset.
    void rowsComeAndGoOneByOne()
    {
        QSignalSpy resets(m_model.get(), &QAbstractItemModel::modelReset);
        add(Notification::InfoMessage, "a");
        const auto b = add(Notification::ErrorMessage, "b");
        const QPersistentModelIndex kept = m_model->index(1, 0);
        add(Notification::InfoMessage, "c\nd");
        QCOMPARE(m_model->rowCount(), 3);
        QCOMPARE(m_model->index(2, 0).data(NotificationModel::DetailsRole).toString(),
                 QStringLiteral("c<br>d"));
        QSignalSpy changed(m_model.get(), &QAbstractItemModel::dataChanged);
        QVERIFY(m_model->setData(kept, true, NotificationModel::AcceptedRole));
        QVERIFY(b->isAccepted());
        QCOMPARE(changed.size(), 1);
        QVERIFY(!m_model->setData(kept, QStringLiteral("x"), NotificationModel::TitleRole));
        QVERIFY(kept.isValid());
        QCOMPARE(m_model->headerData(3, Qt::Horizontal, Qt::DisplayRole).toString(),
                 QStringLiteral("Created"));
        expectWarning(QStringLiteral("Unexpected role 999 on row 3"));
        QVERIFY(!m_model->headerData(3, Qt::Horizontal, 999).isValid());
        QCOMPARE(m_model->index(1, 4).data(Qt::DisplayRole).toBool(), true);
        m_manager->clear();
        QCOMPARE(m_model->rowCount(), 0);
        QCOMPARE(resets.size(), 0);
        add(Notification::InfoMessage, "e");
        m_manager.reset();
        QCOMPARE(m_model->rowCount(), 0);
    }

    void newestStandsFirst()
    {
        SortedNotificationModel sorted;
        const QAbstractItemModelTester tester(&sorted, QAbstractItemModelTester::FailureReportingMode::Fatal);
        sorted.setManager(m_manager.get());
        const QDateTime noon(QDate(2026, 5, 1), QTime(12, 0));
        add(Notification::InfoMessage, "first")->setDateTime(noon);
        add(Notification::InfoMessage, "last")->setDateTime(noon.addSecs(5));
        add(Notification::InfoMessage, "in the same breath")->setDateTime(noon);
        const auto title = [&sorted](int row) {
            return sorted.index(row, 0).data(NotificationModel::TitleRole).toString();
        };
        QCOMPARE(title(0), QStringLiteral("last"));
        QCOMPARE(title(1), QStringLiteral("in the same breath"));
    }

    void gravestIsPending()
    {
        PendingNotificationModel pending;
        const QAbstractItemModelTester tester(&pending,
                                              QAbstractItemModelTester::FailureReportingMode::Fatal);
        pending.setManager(m_manager.get());
        const auto title = [&pending] {
            return pending.index(0, 0).data(NotificationModel::TitleRole).toString();
        };
        QCOMPARE(pending.rowCount(), 0);
        add(Notification::WarningMessage, "warning");
        QCOMPARE(title(), QStringLiteral("warning"));
        const auto error = add(Notification::ErrorMessage, "error");
        add(Notification::ErrorMessage, "second error");
        QCOMPARE(title(), QStringLiteral("error"));
        QVERIFY(pending.setData(pending.index(0, 0), true, NotificationModel::AcceptedRole));
        QVERIFY(error->isAccepted());
        QCOMPARE(title(), QStringLiteral("second error"));
        error->setIsAccepted(false); // waits again, and was there before
        QCOMPARE(title(), QStringLiteral("error"));
        m_manager->clear();
        QCOMPARE(pending.rowCount(), 0);
    }

    /// What was shown for long enough leaves, and whoever says it again is heard again.
    void passedOverUntilSaidAgain()
    {
        PendingNotificationModel pending;
        const QAbstractItemModelTester tester(&pending,
                                              QAbstractItemModelTester::FailureReportingMode::Fatal);
        pending.setManager(m_manager.get());
        const auto warning = add(Notification::WarningMessage, "warning");
        for (int i = 0; i < 2; ++i) {
            pending.passOver();
            QVERIFY(pending.pending() != warning);
            warning->setDateTime(QDateTime::currentDateTime().addSecs(1)); // it is not said again
            add(Notification::InfoMessage, "something else");
            QVERIFY(pending.pending() != warning);
            QCOMPARE(add(Notification::WarningMessage, "warning"), warning);
            QCOMPARE(pending.pending(), warning);
        }
    }

    void countsWhatWaits()
    {
        NotificationStatusModel status;
        const QAbstractItemModelTester tester(&status, QAbstractItemModelTester::FailureReportingMode::Fatal);
        status.setManager(m_manager.get());
        add(Notification::WarningMessage, "w");
        const auto e = add(Notification::ErrorMessage, "e1");
        add(Notification::ErrorMessage, "e2");
        add(Notification::ErrorMessage, "e3");
        const auto row = [&status](int number) {
            const QModelIndex index = status.index(number, 0);
            return std::pair(index.data(NotificationStatusModel::TypeRole).value<Notification::MessageType>(),
                             index.data(NotificationStatusModel::CountRole).toInt());
        };
        QCOMPARE(status.rowCount(), 2);
        QCOMPARE(row(0), std::pair(Notification::ErrorMessage, 3));
        QCOMPARE(row(1), std::pair(Notification::WarningMessage, 1));
        e->setIsAccepted(true);
        QCOMPARE(row(0).second, 2);
    }

    /// A server that says one thing a hundred times says one thing.
    void repeatsAreOne()
    {
        const auto first = add(Notification::ErrorMessage, "same");
        for (int i = 0; i < 9; ++i)
            QCOMPARE(add(Notification::ErrorMessage, "same"), first);
        QCOMPARE(m_model->rowCount(), 1);
        QCOMPARE(m_model->index(0, 0).data(NotificationModel::RepeatsRole).toInt(), 10);
        first->setIsAccepted(true); // who has read it hears of it again
        QVERIFY(add(Notification::ErrorMessage, "same") != first);
        QVERIFY(add(Notification::WarningMessage, "same") != first);
        QCOMPARE(m_model->rowCount(), 3);
    }

    /// Any number of messages is held as some hundreds, and nothing of it is silently gone.
    void floodIsBounded()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("vantrel.notification*=false"));
        const auto restore = qScopeGuard([] { QLoggingCategory::setFilterRules({}); });
        SortedNotificationModel sorted;
        sorted.setManager(m_manager.get());
        QSignalSpy resets(m_model.get(), &QAbstractItemModel::modelReset);
        QSignalSpy moves(m_model.get(), &QAbstractItemModel::rowsMoved);
        const auto say = [this](Notification::MessageType type, int number) {
            return m_manager->createNotification(type, QStringLiteral("%1").arg(number), {});
        };
        const auto error = say(Notification::ErrorMessage, -1);
        const auto accepted = say(Notification::ErrorMessage, -2);
        accepted->setIsAccepted(true);
        QSharedPointer<Notification> newest;
        for (int i = 0; i < 1200; ++i)
            newest = say(Notification::WarningMessage, i);
        const auto held = m_manager->notifications();
        QVERIFY(held.size() <= 504);
        QVERIFY(held.contains(error) && held.contains(newest) && !held.contains(accepted));
        QCOMPARE(m_model->rowCount(), held.size());
        QCOMPARE(sorted.rowCount(), held.size());
        QCOMPARE(resets.size() + moves.size(), 0);
        QCOMPARE(counted(Notification::WarningMessage), 1200);
        for (int i = 0; i < 800; ++i)
            say(Notification::ErrorMessage, i);
        QVERIFY(m_manager->notifications().size() <= 504);
        QVERIFY(m_manager->notifications().contains(error));
        QCOMPARE(counted(Notification::ErrorMessage), 801);
        QCOMPARE(counted(Notification::WarningMessage), 1200);
        for (const auto& one : m_manager->notifications())
            one->setIsAccepted(true);
        const auto later = say(Notification::ErrorMessage, 5000); // there is room for it
        QVERIFY(m_manager->notifications().contains(later));
        QCOMPARE(counted(Notification::ErrorMessage), 1);
    }

private:
    /// What waits of a type, and what is told to have been left out of it.
    int counted(Notification::MessageType type) const
    {
        static const QRegularExpression more(QStringLiteral("^(\\d+) more "));
        int all = 0;
        for (const auto& one : m_manager->notifications()) {
            if (one->type() != type || one->isAccepted())
                continue;
            const auto told = more.match(one->title());
            all += told.hasMatch() ? told.captured(1).toInt() : 1;
        }
        return all;
    }

    QSharedPointer<Notification> add(Notification::MessageType type, const char* text)
    {
        return m_manager->createNotification(type, QString::fromLatin1(text), QString::fromLatin1(text));
    }

    std::unique_ptr<NotificationManagerImpl> m_manager;
    std::unique_ptr<NotificationModel> m_model;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

} // namespace vantrel::test

using vantrel::test::TestNotificationModels;
HALCYRA_TEST(TestNotificationModels)
#include "test_notificationmodels.moc"
