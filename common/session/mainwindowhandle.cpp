#include "common/session/mainwindowhandle.h"

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

} // namespace vantrel
