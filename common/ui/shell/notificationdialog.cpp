#include "common/ui/shell/notificationdialog.h"

#include "common/notification/notificationmanager.h"
#include "common/ui/shell/notificationlist.h"
#include "common/ui/style/fontsizefollower.h"

#include <QVBoxLayout>

namespace vantrel {

NotificationDialog::NotificationDialog(NotificationManager* manager, QWidget* parent)
    : ZTDialog(tr("Notifications"), parent)
    , m_manager(manager)
    , m_list(new NotificationList(manager, this))
{
    setObjectNames(QStringLiteral("NotificationDialog"));
    contentLayout()->addWidget(m_list, 1);
    setAcceptText(tr("ACKNOWLEDGE ALL"));
    setCancelText(tr("CLOSE"));
    followFontSize(this, [this](FontSize size) {
        setMinimumWidth(scaled(560, size));
        m_list->setMinimumHeight(scaled(280, size));
    });
    connect(this, &ZTDialog::confirmed, this, &NotificationDialog::acceptAll);
    connect(m_list, &NotificationList::changed, this, &NotificationDialog::refresh);
    refresh();
    m_list->setFocus();
}

void NotificationDialog::refresh()
{
    setAcceptEnabled(m_list->hasWaiting());
}

void NotificationDialog::acceptAll()
{
    if (!m_manager)
        return;
    const auto all = m_manager->notifications();
    for (const QSharedPointer<Notification>& notification : all)
        notification->setIsAccepted(true);
}

} // namespace vantrel
