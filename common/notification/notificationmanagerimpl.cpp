#include "common/notification/notificationmanagerimpl.h"

#include "common/notification/notificationlogging.h"
#include "common/notification/notificationmanagerimpl_p.h"

#include <QCoreApplication>
#include <QSet>

#include <algorithm>

namespace vantrel {

namespace {

constexpr qsizetype searched = 64; // of the newest, for one that is said again

struct Counted
{
    const char* one;
    const char* many;
};

constexpr std::array countedTitles{
    Counted{QT_TRANSLATE_NOOP("Notification", "1 more message"),
            QT_TRANSLATE_NOOP("Notification", "%1 more messages")},
    Counted{QT_TRANSLATE_NOOP("Notification", "1 more completed"),
            QT_TRANSLATE_NOOP("Notification", "%1 more completed")},
    Counted{QT_TRANSLATE_NOOP("Notification", "1 more warning"),
            QT_TRANSLATE_NOOP("Notification", "%1 more warnings")},
    Counted{QT_TRANSLATE_NOOP("Notification", "1 more error"),
            QT_TRANSLATE_NOOP("Notification", "%1 more errors")},
};

QString leftOutTitle(Notification::MessageType type, int number)
{
    const Counted& of = countedTitles[type];
    return number == 1 ? QCoreApplication::translate("Notification", of.one)
                       : QCoreApplication::translate("Notification", of.many).arg(number);
}

/// The higher, the longer it stays.
int weight(const Notification& notification)
{
    return notification.isAccepted() ? 0 : 1 + notification.type();
}

constexpr int heaviestToGo = 1 + Notification::WarningMessage;

} // namespace

void NotificationManagerImplPrivate::observeNotification(const QSharedPointer<Notification>& notification)
{
    // Weak, so that the connection of a notification does not keep it alive.
    const auto changed = [this, weak = notification.toWeakRef()] {
        if (const auto strong = weak.toStrongRef())
            Q_EMIT m_manager->notificationChanged(strong);
    };
    const Notification* source = notification.get();
    connect(source, &Notification::typeChanged, this, changed);
    connect(source, &Notification::titleChanged, this, changed);
    connect(source, &Notification::detailsChanged, this, changed);
    connect(source, &Notification::dateTimeChanged, this, changed);
    connect(source, &Notification::isAcceptedChanged, this, changed);
    connect(source, &Notification::repeatsChanged, this, changed);
}

QSharedPointer<Notification> NotificationManagerImplPrivate::findWaiting(Notification::MessageType type,
                                                                         const QString& title,
                                                                         const QString& details) const
{
    const auto newest = std::min<qsizetype>(list.size(), searched);
    for (qsizetype i = 1; i <= newest; ++i) {
        const QSharedPointer<Notification>& one = list.at(list.size() - i);
        if (!one->isAccepted() && one->type() == type && one->title() == title && one->details() == details)
            return one;
    }
    return {};
}

void NotificationManagerImplPrivate::forgetAll()
{
    for (const auto& notification : std::as_const(list))
        notification->disconnect(this);
    list.clear();
    m_leftOut = {};
}

bool NotificationManagerImplPrivate::mayGo(const Notification& notification) const
{
    return notification.isAccepted() || m_leftOut[notification.type()].told.data() != &notification;
}

void NotificationManagerImplPrivate::makeRoom()
{
    QSet<const Notification*> gone;
    std::array<int, 4> unseen{};
    for (int heavy = 0; heavy <= heaviestToGo; ++heavy) {
        for (const QSharedPointer<Notification>& one : std::as_const(list)) {
            if (gone.size() == mostHeld / 4)
                break;
            if (weight(*one) != heavy || !mayGo(*one))
                continue;
            gone.insert(one.data());
            if (!one->isAccepted())
                ++unseen[one->type()];
        }
    }
    list.removeIf([this, &gone](const QSharedPointer<Notification>& one) {
        const bool goes = gone.contains(one.data());
        if (goes)
            one->disconnect(this);
        return goes;
    });
    for (const auto type : {Notification::InfoMessage, Notification::CheckedMessage,
                            Notification::WarningMessage, Notification::ErrorMessage}) {
        if (unseen[type] > 0)
            leaveOut(type, unseen[type]);
    }
}

void NotificationManagerImplPrivate::leaveOut(Notification::MessageType type, int number)
{
    LeftOut& of = m_leftOut[type];
    const bool isTold = of.told && !of.told->isAccepted();
    of.number = isTold ? of.number + number : number;
    if (isTold) {
        const auto told = of.told;
        told->setTitle(leftOutTitle(type, of.number));
        return;
    }
    of.told = QSharedPointer<Notification>::create(
        m_manager, type, leftOutTitle(type, number),
        QCoreApplication::translate("Notification",
                                    "More came than this list holds. All of them are in the log."));
    append(of.told);
}

void NotificationManagerImplPrivate::append(const QSharedPointer<Notification>& notification)
{
    list.append(notification);
    observeNotification(notification);
    Q_EMIT m_manager->notificationAdded(notification);
    Q_EMIT m_manager->notificationsChanged();
}

NotificationManagerImpl::NotificationManagerImpl(QObject* parent)
    : NotificationManager(parent)
    , m_private(std::make_unique<NotificationManagerImplPrivate>(this))
{
}

NotificationManagerImpl::~NotificationManagerImpl() = default;

NotificationManagerImpl* NotificationManagerImpl::instance()
{
    static NotificationManagerImpl manager;
    return &manager;
}

QSharedPointer<Notification> NotificationManagerImpl::createNotification(Notification::MessageType type,
                                                                         QString const& title,
                                                                         QString const& details)
{
    if (const auto same = m_private->findWaiting(type, title, details)) {
        same->repeat();
        return same;
    }
    const auto notification = QSharedPointer<Notification>::create(this, type, title, details);
    addNotification(notification);
    return notification;
}

bool NotificationManagerImpl::addNotification(QSharedPointer<Notification> notification)
{
    if (!notification || m_private->list.contains(notification))
        return false;
    qCInfo(lcNotification) << "Adding new notification" << *notification;
    if (m_private->isFull())
        m_private->makeRoom();
    if (m_private->isFull())
        m_private->leaveOut(notification->type(), 1);
    else
        m_private->append(notification);
    return true;
}

void NotificationManagerImpl::clear()
{
    m_private->forgetAll();
    Q_EMIT notificationsChanged();
}

QList<QSharedPointer<Notification>> NotificationManagerImpl::notifications() const
{
    return m_private->list;
}

} // namespace vantrel
