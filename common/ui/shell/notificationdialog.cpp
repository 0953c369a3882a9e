#include "common/ui/shell/notificationdialog.h"

#include "common/notification/notificationmanager.h"
#include "common/ui/shell/notificationlist.h"
#include "common/ui/style/fontsizefollower.h"

#include <QVBoxLayout>

#include <algorithm>

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
    m_refresh.setSingleShot(true);
    m_refresh.setInterval(0);
    connect(m_list, &NotificationList::changed, &m_refresh, qOverload<>(&QTimer::start));
    connect(&m_refresh, &QTimer::timeout, this, &NotificationDialog::refresh);
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
    auto all = m_manager->notifications();
    // The gravest last: what is shown over the window changes once and not for each.
    std::reverse(all.begin(), all.end());
    std::stable_sort(all.begin(), all.end(),
                     [](const auto& a, const auto& b) { return a->type() < b->type(); });
    for (const QSharedPointer<Notification>& notification : std::as_const(all))
        notification->setIsAccepted(true);
}

} // namespace vantrel
