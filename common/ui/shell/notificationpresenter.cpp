#include "common/ui/shell/notificationpresenter.h"

#include "common/notification/notificationmanager.h"
#include "common/notification/pendingnotificationmodel.h"
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
        if (const QSharedPointer<Notification> shown = m_shown)
            shown->setIsAccepted(true);
    });
    m_stay.setSingleShot(true);
    m_stay.setInterval(6s);
    connect(&m_stay, &QTimer::timeout, this, &NotificationPresenter::leave);
    m_present.setSingleShot(true);
    m_present.setInterval(0);
    connect(&m_present, &QTimer::timeout, this, &NotificationPresenter::present);
    connect(manager, &NotificationManager::notificationsChanged, this, &NotificationPresenter::refresh);
    connect(manager, &NotificationManager::notificationChanged, this, &NotificationPresenter::refresh);
    followFontSize(this, [this](FontSize) {
        refresh();
        present();
    });
}

void NotificationPresenter::setMostWidth(int width)
{
    if (std::exchange(m_mostWidth, width) != width)
        present();
}

void NotificationPresenter::refresh()
{
    const QSharedPointer<Notification> shown =
        m_manager ? PendingNotificationModel::gravestOf(m_manager->notifications(), m_left) : nullptr;
    const bool isOther = std::exchange(m_shown, shown) != shown;
    if (isOther)
        m_stay.stop();
    updateMouseInput();
    if (!shown) {
        hide();
        return;
    }
    if (shown->type() != Notification::ErrorMessage && !m_stay.isActive() && !underMouse())
        m_stay.start();
    if (isOther)
        present(); // its button speaks of this one from now on
    else
        m_present.start();
}

void NotificationPresenter::present()
{
    const QSharedPointer<Notification> shown = m_shown;
    if (!shown)
        return;
    const int extent = iconExtent(currentFontSize());
    m_icon->setPixmap(IconCache::pixmap(notificationIcon(shown->type()), notificationColor(shown->type()),
                                        QSize(extent, extent), devicePixelRatioF()));
    m_title->setText(plainTitle(shown->title(), shown->repeats()));
    setAccessibleName(tr("%1: %2").arg(notificationName(shown->type()), m_title->text()));
    layout()->activate();
    resize(std::min(m_mostWidth, sizeHint().width()), sizeHint().height());
    show();
    raise();
}

/// What is done needs nobody; a warning waits in the status bar for somebody to look.
void NotificationPresenter::leave()
{
    const QSharedPointer<Notification> shown = m_shown;
    if (!shown || shown->type() == Notification::ErrorMessage)
        return;
    if (shown->type() != Notification::WarningMessage)
        return shown->setIsAccepted(true);
    const Notification* const left = shown.data();
    m_left.insert(left);
    connect(left, &QObject::destroyed, this, [this, left] { m_left.remove(left); });
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
    setAttribute(Qt::WA_TransparentForMouseEvents, !m_shown);
}

} // namespace vantrel
