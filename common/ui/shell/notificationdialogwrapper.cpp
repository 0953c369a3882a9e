#include "common/ui/shell/notificationdialogwrapper.h"

#include "common/notification/notificationmanager.h"
#include "common/qml/qmlmanager.h"
#include "common/qml/quickdialog.h"
#include "common/ui/toolkit/ztdialog.h"

#include <QLoggingCategory>
#include <QQmlComponent>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.notification")

} // namespace

NotificationDialogWrapper::NotificationDialogWrapper(NotificationManager* manager, QWidget* parent)
    : QObject(parent)
    , m_manager(manager)
{
}

NotificationDialogWrapper::~NotificationDialogWrapper()
{
    if (m_dialog)
        delete m_dialog->widget();
}

QuickDialog* NotificationDialogWrapper::load(NotificationManager* manager)
{
    QMLManager::instance()->initialize();
    QQmlComponent component(QMLManager::instance()->engine(),
                            QUrl(QStringLiteral("qrc:/QmlModules/ZTCommon/NotificationDialog.qml")));
    auto* dialog = qobject_cast<QuickDialog*>(
        component.createWithInitialProperties({{QStringLiteral("manager"), QVariant::fromValue(manager)}}));
    if (!dialog)
        qCWarning(log) << "Failed to load dialog!" << component.errors();
    return dialog;
}

void NotificationDialogWrapper::show()
{
    qCDebug(log) << "Showing notification dialog";
    if (!m_dialog && m_manager) {
        m_dialog = load(m_manager);
        if (!m_dialog)
            return;
        connect(m_dialog, &QuickDialog::closed, this, &NotificationDialogWrapper::onEnded);
        connect(m_dialog, &QuickDialog::accepted, this, &NotificationDialogWrapper::onEnded);
        connect(m_dialog, &QuickDialog::rejected, this, &NotificationDialogWrapper::onEnded);
    }
    if (m_dialog)
        m_dialog->show();
}

/// Whatever it tells of its end first is the end.
void NotificationDialogWrapper::onEnded()
{
    m_dialog->disconnect(this);
    m_dialog.clear();
    Q_EMIT closed();
}

} // namespace vantrel
