#include "common/notification/notificationmanagerimpl.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>
#include <QTest>

namespace vantrel::test {

class TestNotifications : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsEachOnce()
    {
        NotificationManagerImpl manager;
        QSignalSpy added(&manager, &NotificationManager::notificationAdded);
        QSignalSpy changed(&manager, &NotificationManager::notificationsChanged);
        const auto before = QDateTime::currentDateTime();
        const auto first = manager.createNotification(Notification::ErrorMessage, QStringLiteral("title"),
                                                      QStringLiteral("details"));
        QVERIFY(first->dateTime() >= before && first->dateTime() <= QDateTime::currentDateTime());
        QCOMPARE(first->manager(), &manager);
        QVERIFY(!manager.addNotification(first));
        QVERIFY(!manager.addNotification({}));
        manager.createNotification(Notification::InfoMessage, QStringLiteral("second"));
        QCOMPARE(added.count(), 2);
        QCOMPARE(changed.count(), 2);
        QCOMPARE(manager.notifications().size(), 2);
        QCOMPARE(manager.notifications()[0], first);
    }

    void tellsRealChanges()
    {
        NotificationManagerImpl manager;
        QSignalSpy changed(&manager, &NotificationManager::notificationChanged);
        const auto notification =
            manager.createNotification(Notification::InfoMessage, QStringLiteral("title"), {});
        QSignalSpy accepted(notification.get(), &Notification::isAcceptedChanged);
        notification->setIsAccepted(false);
        notification->setTitle(QStringLiteral("title"));
        notification->setType(Notification::InfoMessage);
        QCOMPARE(changed.count(), 0);
        notification->setIsAccepted(true);
        notification->setTitle(QStringLiteral("other"));
        notification->setDetails(QStringLiteral("more"));
        notification->setType(Notification::WarningMessage);
        notification->setDateTime(QDateTime::currentDateTime().addSecs(60));
        QCOMPARE(accepted.count(), 1);
        QCOMPARE(changed.count(), 5);
        QCOMPARE(changed[0][0].value<QSharedPointer<Notification>>(), notification);
    }

    void forgetsAll()
    {
        NotificationManagerImpl manager;
        QSignalSpy all(&manager, &NotificationManager::notificationsChanged);
        QSignalSpy one(&manager, &NotificationManager::notificationChanged);
        const auto held = manager.createNotification(Notification::InfoMessage, QStringLiteral("held"), {});
        const QWeakPointer<Notification> other =
            manager.createNotification(Notification::InfoMessage, QStringLiteral("other"), {});
        manager.clear();
        QVERIFY(manager.notifications().isEmpty());
        QVERIFY(other.isNull());
        held->setTitle(QStringLiteral("changed"));
        QCOMPARE(one.count(), 0);
        QCOMPARE(all.count(), 3);
        manager.clear();
        QCOMPARE(all.count(), 4);
    }

    void printsItself()
    {
        Notification notification(nullptr, Notification::CheckedMessage, QStringLiteral("Copied"),
                                  QStringLiteral("3 files"));
        notification.setDateTime(QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9, 10)));
        QString text;
        QDebug(&text) << notification;
        QCOMPARE(text.trimmed(), QStringLiteral("<Notification CHECKED: Copied - 3 files, 07:08:09.010"));
    }
};

HALCYRA_TEST(TestNotifications)

} // namespace vantrel::test

#include "test_notifications.moc"
