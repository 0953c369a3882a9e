#include "common/ui/shell/notificationdialogwrapper.h"

#include "common/notification/notificationmanager.h"
#include "common/ui/shell/notificationdialog.h"

#include <QLoggingCategory>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.notification")

} // namespace

NotificationDialogWrapper::NotificationDialogWrapper(NotificationManager* manager, QWidget* parent)
    : QObject(parent)
    , m_manager(manager)
{
}

void NotificationDialogWrapper::show()
{
    qCDebug(log) << "Showing notification dialog";
    if (!m_dialog && m_manager) {
        m_dialog = new NotificationDialog(m_manager, qobject_cast<QWidget*>(parent()));
        m_dialog->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_dialog, &QDialog::finished, this, &NotificationDialogWrapper::closed);
    }
    if (m_dialog) {
        m_dialog->show();
        m_dialog->activateWindow();
    }
}

} // namespace vantrel
