#include "common/session/window/mainwindowhandle.h"

#include <QCoreApplication>
#include <QEvent>
#include <QList>
#include <QPointer>
#include <QWidget>

#include <utility>

namespace vantrel {

namespace {

QPointer<QWidget>& handle()
{
    static QPointer<QWidget> window;
    return window;
}

/// The parts of the window that lie side by side, from the lowest: where they are, and whether they show.
struct Part
{
    QWidget* widget;
    QRect place;
    bool isShown;

    bool operator==(const Part&) const = default;
};

QList<Part> partsOf(const QWidget* window)
{
    QList<Part> parts;
    for (QWidget* part : window->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!part->isWindow())
            parts.append({part, part->geometry(), part->isVisible()});
    }
    return parts;
}

QList<Part>& heldParts()
{
    static QList<Part> parts;
    return parts;
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

/// Only the window holds its updates: what its parts ask for meanwhile is kept, so that afterwards nothing
/// else is painted. QWidget::setUpdatesEnabled() has all of them forget it, and all of the window painted.
void setMainWindowUpdatesEnabled(bool enabled)
{
    QWidget* window = handle();
    if (!window || window->updatesEnabled() == enabled)
        return;
    if (!enabled)
        heldParts() = partsOf(window);
    window->setAttribute(Qt::WA_UpdatesDisabled, !enabled);
    if (!enabled)
        return;
    const QList<Part> parts = partsOf(window);
    for (const Part& part : parts) { // one that came meanwhile took the window's state
        if (!part.widget->updatesEnabled() && !part.widget->testAttribute(Qt::WA_ForceUpdatesDisabled))
            part.widget->setUpdatesEnabled(true);
    }
    if (parts != std::exchange(heldParts(), {}))
        window->update(); // what lies below one that moved is the window's own to ask for
    // A request to paint that came in between is answered by nothing, and what it was for stays marked: Qt
    // makes no second one for it, and the window would never paint again.
    QCoreApplication::postEvent(window, new QEvent(QEvent::UpdateRequest));
}

} // namespace vantrel
