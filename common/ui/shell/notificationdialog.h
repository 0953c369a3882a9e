#pragma once

#include "common/ui/toolkit/ztdialog.h"

#include <QPointer>
#include <QTimer>

namespace vantrel {

class NotificationList;
class NotificationManager;

/// All notifications, newest first. Looking at them acknowledges them when the dialog is closed by its
/// button.
class NotificationDialog : public ZTDialog
{
    Q_OBJECT

public:
    explicit NotificationDialog(NotificationManager* manager, QWidget* parent = nullptr);

private:
    void refresh();
    void acceptAll();

    QPointer<NotificationManager> m_manager;
    NotificationList* m_list;
    QTimer m_refresh; // once for all that changes in one turn
};

} // namespace vantrel
