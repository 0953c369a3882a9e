#pragma once

#include "common/notification/notification.h"
#include "common/ui/toolkit/ztframe.h"

#include <QPointer>
#include <QSet>
#include <QSharedPointer>
#include <QTimer>

#include <chrono>

class QLabel;

namespace vantrel {

class ElidedLabel;
class NotificationManager;
class PushButton;

/// The pop-up over the window for the notification that most needs the operator: the highest kind first, the
/// oldest of a kind first. An error stays until it is acknowledged; others leave after six seconds, for which
/// nobody rests on them with the mouse, and a warning is counted on. It lets the mouse through, and hides,
/// while there is none.
class NotificationPresenter : public ZTFrame
{
    Q_OBJECT

public:
    NotificationPresenter(NotificationManager* manager, QWidget* parent);

    /// Null while there is none to show.
    QSharedPointer<Notification> pending() const { return m_shown; }
    /// For how long what is no error is shown: six seconds.
    void setStay(std::chrono::milliseconds stay) { m_stay.setInterval(stay); }
    /// It grows no wider; in pixels.
    void setMostWidth(int width);

Q_SIGNALS:
    /// The operator wants the details.
    void detailsClicked();

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void refresh();
    void present();
    void leave();
    void updateMouseInput();

    QPointer<NotificationManager> m_manager;
    QSet<const Notification*> m_left; // warnings that have been shown for long enough
    QSharedPointer<Notification> m_shown;
    QTimer m_stay;
    QTimer m_present; // what is said a hundred times in one turn is laid out once
    int m_mostWidth = 800;
    QLabel* m_icon;
    ElidedLabel* m_title;
    PushButton* m_details;
    PushButton* m_accept;
};

} // namespace vantrel
