#include "common/ui/shell/notificationpresenter.h"

#include "common/notification/notificationmanager.h"
#include "common/session/settings/configuration.h"
#include "common/ui/shell/notificationstyle.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/pushbutton.h"

#include <QHBoxLayout>

#include <utility>

namespace vantrel {

using namespace std::chrono_literals;

NotificationPresenter::NotificationPresenter(NotificationManager* manager, QWidget* parent)
    : ZTFrame(parent)
    , m_manager(manager)
    , m_icon(new QLabel(this))
    , m_title(new ElidedLabel(this))
    , m_details(new PushButton(tr("DETAILS"), this))
    , m_accept(new PushButton(tr("OK"), this))
{
    setObjectName(QStringLiteral("NotificationPresenter"));
    m_title->setObjectName(QStringLiteral("NotificationPresenter-title"));
    m_details->setObjectName(QStringLiteral("NotificationPresenter-details-button"));
    m_accept->setObjectName(QStringLiteral("NotificationPresenter-accept-button"));
    m_details->setStyleClass(QStringLiteral("flat"));
    m_accept->setStyleClass(QStringLiteral("cancel"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(16, 8, 8, 8);
    row->setSpacing(8);
    for (QWidget* widget : std::initializer_list<QWidget*>{m_icon, m_title, m_details, m_accept})
        row->addWidget(widget);
    connect(m_details, &PushButton::clicked, this, &NotificationPresenter::detailsClicked);
    connect(m_accept, &PushButton::clicked, this, [this] {
        if (const QSharedPointer<Notification> shown = pending())
            shown->setIsAccepted(true);
    });
    m_stay.setSingleShot(true);
    m_stay.setInterval(6s);
    connect(&m_stay, &QTimer::timeout, this, &NotificationPresenter::leave);
    connect(manager, &NotificationManager::notificationsChanged, this, &NotificationPresenter::refresh);
    connect(manager, &NotificationManager::notificationChanged, this, &NotificationPresenter::refresh);
    followFontSize(this, [this](FontSize) { refresh(); });
}

QSharedPointer<Notification> NotificationPresenter::pending() const
{
    QSharedPointer<Notification> first;
    if (!m_manager)
        return first;
    const auto all = m_manager->notifications();
    for (const QSharedPointer<Notification>& notification : all) {
        if (!notification->isAccepted() && (!first || notification->type() > first->type()) &&
            !hasLeft(notification))
            first = notification;
    }
    return first;
}

bool NotificationPresenter::hasLeft(const QSharedPointer<Notification>& notification) const
{
    return m_left.contains(notification.toWeakRef());
}

void NotificationPresenter::setMostWidth(int width)
{
    if (std::exchange(m_mostWidth, width) != width)
        refresh();
}

void NotificationPresenter::refresh()
{
    updateMouseInput();
    const QSharedPointer<Notification> shown = pending();
    if (std::exchange(m_shown, shown) != shown)
        m_stay.stop();
    if (!shown) {
        hide();
        return;
    }
    if (shown->type() != Notification::ErrorMessage && !m_stay.isActive() && !underMouse())
        m_stay.start();
    const int extent = iconExtent(currentFontSize());
    m_icon->setPixmap(IconCache::pixmap(notificationIcon(shown->type()), notificationColor(shown->type()),
                                        QSize(extent, extent), devicePixelRatioF()));
    const QString title = plainText(shown->title());
    m_title->setText(shown->repeats() > 1 ? tr("%1 (%2 times)").arg(title).arg(shown->repeats()) : title);
    setAccessibleName(tr("%1: %2").arg(notificationName(shown->type()), m_title->text()));
    layout()->activate();
    resize(std::min(m_mostWidth, sizeHint().width()), sizeHint().height());
    show();
    raise();
}

/// What is done needs nobody; a warning waits in the status bar for somebody to look.
void NotificationPresenter::leave()
{
    const QSharedPointer<Notification> shown = pending();
    if (!shown || shown->type() == Notification::ErrorMessage)
        return;
    if (shown->type() != Notification::WarningMessage)
        return shown->setIsAccepted(true);
    m_left.removeIf([](const QWeakPointer<Notification>& one) { return one.isNull(); });
    m_left.append(shown);
    refresh();
}

void NotificationPresenter::enterEvent(QEnterEvent* event)
{
    ZTFrame::enterEvent(event);
    m_stay.stop();
}

void NotificationPresenter::leaveEvent(QEvent* event)
{
    ZTFrame::leaveEvent(event);
    if (m_shown && m_shown->type() != Notification::ErrorMessage)
        m_stay.start();
}

void NotificationPresenter::updateMouseInput()
{
    setAttribute(Qt::WA_TransparentForMouseEvents, !pending());
}

} // namespace vantrel
