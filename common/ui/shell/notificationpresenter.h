#pragma once

#include "common/ui/shell/notificationhost.h"

#include <chrono>

namespace vantrel {

/// The pop-up over the window for the notification that most needs the operator: the highest kind first, the
/// oldest of a kind first. An error stays until it is acknowledged; others leave after six seconds, for which
/// nobody rests on them with the mouse, and a warning is counted on. Owned by the main window.
class NotificationPresenter : public NotificationHost
{
    Q_OBJECT

public:
    /// Of the process's one sink unless another manager is set.
    explicit NotificationPresenter(QWidget* parent = nullptr);

    void setManager(NotificationManager* manager);
    /// For how long what is no error is shown: six seconds.
    void setStay(std::chrono::milliseconds stay);
    /// It grows no wider; in pixels.
    void setMostWidth(int width);

protected:
    void fit(const QSize& wanted) override;

private:
    void onNotificationsChanged() { updateMouseInput(); }
    void onNotificationChanged() { updateMouseInput(); }
    void updateMouseInput();
};

} // namespace vantrel
