#pragma once

#include "common/ui/toolkit/ztframe.h"

#include <QPointer>
#include <QSharedPointer>

class QLabel;

namespace vantrel {

class NotificationManager;
class Notification;
class PushButton;
class ZTLabel;

/// The pop-up over the window for the notification that most needs the operator: the highest kind first, the
/// oldest of a kind first. It lets the mouse through, and hides, while there is none.
class NotificationPresenter : public ZTFrame
{
    Q_OBJECT

public:
    NotificationPresenter(NotificationManager* manager, QWidget* parent);

    /// Null while all are acknowledged.
    QSharedPointer<Notification> pending() const;

Q_SIGNALS:
    /// The operator wants the details.
    void detailsClicked();

private:
    void refresh();
    void updateMouseInput();

    QPointer<NotificationManager> m_manager;
    QLabel* m_icon;
    ZTLabel* m_title;
    PushButton* m_details;
    PushButton* m_accept;
};

} // namespace vantrel
