#pragma once

#include "common/ui/shell/notificationhost.h"

namespace vantrel {

/// How many notifications of each kind wait to be acknowledged; nothing is shown for a kind without any. A
/// click opens the list. Owned by the status bar.
class NotificationStatusBar : public NotificationHost
{
    Q_OBJECT

public:
    explicit NotificationStatusBar(QWidget* parent = nullptr);

protected:
    void fit(const QSize& wanted) override;
};

} // namespace vantrel
