#include "common/notification/notificationmanagerimpl.h"

#include "common/notification/notificationlogging.h"
#include "common/notification/notificationmanagerimpl_p.h"

#include <algorithm>

namespace vantrel {

namespace {

constexpr qsizetype searched = 64; // of the newest, for one that is said again

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
    m_private->list.append(notification);
    m_private->observeNotification(notification);
    Q_EMIT notificationAdded(notification);
    Q_EMIT notificationsChanged();
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
