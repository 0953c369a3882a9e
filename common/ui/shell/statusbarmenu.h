#pragma once

#include "common/ui/toolkit/ztmenu.h"

namespace vantrel {

/// The menu of the status bar: what can be done about the connection. Starts as disconnected.
class StatusBarMenu : public ZTMenu
{
    Q_OBJECT

public:
    explicit StatusBarMenu(QWidget* parent = nullptr);

    void onConnected();
    void onDisconnected();

Q_SIGNALS:
    void displayDialog();
    void disconnect();

private:
    QAction* m_disconnect;
};

} // namespace vantrel
