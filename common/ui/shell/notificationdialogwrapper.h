#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

namespace vantrel {

class NotificationDialog;
class NotificationManager;

/// Opens the dialog of notifications, one at a time.
class NotificationDialogWrapper : public QObject
{
    Q_OBJECT

public:
    /// parent: the window that the dialog opens over.
    NotificationDialogWrapper(NotificationManager* manager, QWidget* parent);

    Q_INVOKABLE void show();

Q_SIGNALS:
    void closed();

private:
    QPointer<NotificationManager> m_manager;
    QPointer<NotificationDialog> m_dialog;
};

} // namespace vantrel
