#include "common/session/window/mainwindowhandle.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QWidget>

namespace vantrel {

namespace {

QPointer<QWidget>& handle()
{
    static QPointer<QWidget> window;
    return window;
}

} // namespace

void setMainWindowWidget(QWidget* window)
{
    handle() = window;
}

QWidget* mainWindowWidget()
{
    return handle();
}

void setMainWindowUpdatesEnabled(bool enabled)
{
    QWidget* window = handle();
    if (!window || window->updatesEnabled() == enabled)
        return;
    window->setUpdatesEnabled(enabled);
    // A request to paint that came in between is answered by nothing, and what it was for stays marked: Qt
    // makes no second one for it, and the window would never paint again.
    if (enabled)
        QCoreApplication::postEvent(window, new QEvent(QEvent::UpdateRequest));
}

} // namespace vantrel
