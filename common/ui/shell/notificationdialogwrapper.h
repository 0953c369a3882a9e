#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

namespace vantrel {

class NotificationManager;
class QuickDialog;

/// Opens the dialog of notifications, one at a time. Main thread only.
class NotificationDialogWrapper : public QObject
{
    Q_OBJECT

public:
    /// parent: the window that the dialog opens over.
    NotificationDialogWrapper(NotificationManager* manager, QWidget* parent);
    ~NotificationDialogWrapper() override;

    /// A dialog that goes when it is closed, and whose owner is the caller; null when its file does not load.
    static QuickDialog* load(NotificationManager* manager);
    Q_INVOKABLE void show();

Q_SIGNALS:
    void closed();

private:
    void onEnded();

    QPointer<NotificationManager> m_manager;
    QPointer<QuickDialog> m_dialog;
};

} // namespace vantrel
