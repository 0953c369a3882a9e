#include "common/ui/shell/notificationpresenter.h"

#include "common/notification/notificationmanager.h"
#include "common/session/settings/configuration.h"
#include "common/ui/shell/notificationstyle.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHBoxLayout>
#include <QTextDocumentFragment>

namespace vantrel {

NotificationPresenter::NotificationPresenter(NotificationManager* manager, QWidget* parent)
    : ZTFrame(parent)
    , m_manager(manager)
    , m_icon(new QLabel(this))
    , m_title(new ZTLabel(this))
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
        if (!notification->isAccepted() && (!first || notification->type() > first->type()))
            first = notification;
    }
    return first;
}

void NotificationPresenter::refresh()
{
    updateMouseInput();
    const QSharedPointer<Notification> shown = pending();
    if (!shown) {
        hide();
        return;
    }
    const int extent = iconExtent(currentFontSize());
    m_icon->setPixmap(IconCache::pixmap(notificationIcon(shown->type()), notificationColor(shown->type()),
                                        QSize(extent, extent), devicePixelRatioF()));
    m_title->setText(QTextDocumentFragment::fromHtml(shown->title()).toPlainText());
    adjustSize();
    show();
    raise();
}

void NotificationPresenter::updateMouseInput()
{
    setAttribute(Qt::WA_TransparentForMouseEvents, !pending());
}

} // namespace vantrel
