#include "common/ui/shell/notificationdialog.h"

#include "common/notification/notificationmanager.h"
#include "common/ui/shell/notificationstyle.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/pushbutton.h"

#include <QTextBrowser>
#include <QVBoxLayout>

namespace vantrel {

NotificationDialog::NotificationDialog(NotificationManager* manager, QWidget* parent)
    : ZTDialog(tr("Notifications"), parent)
    , m_manager(manager)
    , m_list(new QTextBrowser(this))
{
    setObjectNames(QStringLiteral("NotificationDialog"));
    m_list->setObjectName(QStringLiteral("NotificationDialog-list"));
    m_list->setOpenLinks(false);
    m_list->setAccessibleName(tr("Notifications"));
    contentLayout()->addWidget(m_list, 1);
    setAcceptText(tr("ACKNOWLEDGE ALL"));
    setCancelText(tr("CLOSE"));
    followFontSize(this, [this](FontSize size) {
        setMinimumWidth(scaled(520, size));
        m_list->setMinimumHeight(scaled(240, size));
    });
    connect(this, &ZTDialog::confirmed, this, &NotificationDialog::acceptAll);
    connect(manager, &NotificationManager::notificationsChanged, this, &NotificationDialog::refresh);
    connect(manager, &NotificationManager::notificationChanged, this, &NotificationDialog::refresh);
    refresh();
}

void NotificationDialog::refresh()
{
    if (!m_manager)
        return;
    // Titles and details may hold the simple rich text that their authors wrote; foreign parts come escaped.
    QString html;
    const auto all = m_manager->notifications();
    bool waiting = false;
    for (auto it = all.crbegin(); it != all.crend(); ++it) {
        const Notification& notification = **it;
        waiting = waiting || !notification.isAccepted();
        const QString details = QString(notification.details()).replace(u'\n', QStringLiteral("<br>"));
        html += QStringLiteral("<p><span style=\"color:%1\">%2</span> <b>%3</b><br>%4</p>")
                    .arg(notificationColor(notification.type()).name(),
                         notification.dateTime().toString(QStringLiteral("HH:mm:ss")), notification.title(),
                         details);
    }
    m_list->setHtml(html.isEmpty() ? tr("<p>Nothing has been reported since the start.</p>") : html);
    setAcceptEnabled(waiting);
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
