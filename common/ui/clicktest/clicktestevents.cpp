#include "common/ui/clicktest/clicktestevents.h"

#include "common/session/window/mainwindowhandle.h"
#include "common/ui/clicktest/clicktestdrag.h"
#include "common/ui/clicktest/clicktestrequest.h"
#include "common/ui/clicktest/nameditem.h"
#include "common/ui/keyboard/pressguard.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QHash>
#include <QKeyEvent>
#include <QLoggingCategory>
#include <QMouseEvent>
#include <QPointer>
#include <QPointingDevice>
#include <QQuickWidget>
#include <QQuickWindow>
#include <QShortcut>
#include <QWheelEvent>
#include <QWidget>

#include <functional>

namespace vantrel::clicktest {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.uitest")

struct Key
{
    int key = 0;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    QString text;
};

Key keyOf(const QString& name)
{
    static const QHash<QString, Key> keys = {
        {QStringLiteral("Esc"), {Qt::Key_Escape, Qt::NoModifier, QStringLiteral("\x1b")}},
        {QStringLiteral("Enter"), {Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r")}},
        {QStringLiteral("Down"), {Qt::Key_Down, Qt::NoModifier, {}}},
        {QStringLiteral("Up"), {Qt::Key_Up, Qt::NoModifier, {}}},
        {QStringLiteral("Left"), {Qt::Key_Left, Qt::NoModifier, {}}},
        {QStringLiteral("Right"), {Qt::Key_Right, Qt::NoModifier, {}}},
        {QStringLiteral("Home"), {Qt::Key_Home, Qt::NoModifier, {}}},
        {QStringLiteral("Tab"), {Qt::Key_Tab, Qt::NoModifier, QStringLiteral("\t")}},
        {QStringLiteral("PageUp"), {Qt::Key_PageUp, Qt::NoModifier, {}}},
        {QStringLiteral("AltLeft"), {Qt::Key_Left, Qt::AltModifier, {}}},
        {QStringLiteral("AltRight"), {Qt::Key_Right, Qt::AltModifier, {}}},
        {QStringLiteral("ShiftLeft"), {Qt::Key_Left, Qt::ShiftModifier, {}}},
        {QStringLiteral("ShiftRight"), {Qt::Key_Right, Qt::ShiftModifier, {}}},
        {QStringLiteral("CtrlA"), {Qt::Key_A, Qt::ControlModifier, {}}},
        {QStringLiteral("CtrlZ"), {Qt::Key_Z, Qt::ControlModifier, {}}},
        {QStringLiteral("CtrlShiftZ"), {Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier, {}}},
        {QStringLiteral("CtrlY"), {Qt::Key_Y, Qt::ControlModifier, {}}},
        {QStringLiteral("Delete"), {Qt::Key_Delete, Qt::NoModifier, {}}},
        {QStringLiteral("F2"), {Qt::Key_F2, Qt::NoModifier, {}}},
    };
    if (const auto found = keys.constFind(name); found != keys.cend())
        return *found;
    if (name.size() == 1 && name.at(0).isPrint())
        return {name.at(0).toUpper().unicode(), Qt::NoModifier, name};
    // Any other as a key map writes it: "F12", "Ctrl+Shift+Z".
    const QKeySequence sequence(name, QKeySequence::PortableText);
    if (sequence.count() == 1 && sequence[0].key() != Qt::Key_unknown)
        return {sequence[0].key(), sequence[0].keyboardModifiers(), {}};
    return {};
}

/// Where an event at a screen position goes, and the position inside it.
struct Target
{
    QPointer<QObject> object;
    QPointF local;
};

/// The item must be there, and the view gets the event where the mouse is: an item may leave the mouse to a
/// part of it.
Target quickTarget(QQuickWidget* view, const ClickTestRequest& request, const QPoint& global)
{
    QQuickItem* root = view->rootObject();
    if (!root) {
        qCInfo(log) << "QML root widget does not have a root object";
        return {};
    }
    if (request.objectName.isEmpty()) {
        qCInfo(log) << "No named target object";
        return {};
    }
    if (!namedItem(view->quickWindow()->contentItem(), request.objectName)) {
        qCInfo(log) << "Could not find named target";
        return {};
    }
    return {view, view->mapFromGlobal(global)};
}

/// The widget that a real mouse reaches there: an open popup takes all of it, and what lies behind a modal
/// dialog gets none.
QWidget* reachableAt(const QPoint& global)
{
    QWidget* widget = QApplication::widgetAt(global);
    if (QWidget* popup = QApplication::activePopupWidget())
        return widget && widget->window() == popup ? widget : popup;
    const QWidget* modal = QApplication::activeModalWidget();
    for (const QWidget* above = widget; modal && above; above = above->parentWidget()) {
        if (above == modal)
            return widget;
    }
    return modal ? nullptr : widget;
}

Target targetAt(const ClickTestRequest& request, const QPoint& global)
{
    QWidget* widget = reachableAt(global);
    if (!widget) {
        qCInfo(log) << "No widget under mouse to send event to:" << global;
        return {};
    }
    if (auto* view = qobject_cast<QQuickWidget*>(widget))
        return quickTarget(view, request, global);
    // The widget under the point may lie inside the one that the robot asked about.
    return {widget, widget->mapFromGlobal(global)};
}

Qt::KeyboardModifiers modifiersOf(const ClickTestRequest& request)
{
    if (request.keyName == QLatin1String("Ctrl"))
        return Qt::ControlModifier;
    return request.keyName == QLatin1String("Shift") ? Qt::ShiftModifier : Qt::NoModifier;
}

void deliverMouse(const ClickTestRequest& request, const QPoint& global, QEvent::Type type,
                  Qt::MouseButton button, Qt::MouseButtons held)
{
    const Target target = targetAt(request, global);
    if (!target.object)
        return;
    QMouseEvent event(type, target.local, QPointF(global), button, held, modifiersOf(request),
                      QPointingDevice::primaryPointingDevice());
    QCoreApplication::sendEvent(target.object, &event);
}

void sendMouse(const ClickTestRequest& request, const QPoint& global, QEvent::Type type,
               Qt::MouseButton button, Qt::MouseButtons held)
{
    deliverMouse(request, global, type, button, held);
    QCursor::setPos(global);
}

/// A real press gives focus before it arrives; Qt leaves a synthesised one without.
void giveFocus(QWidget* widget)
{
    while (widget && !((widget->focusPolicy() & Qt::ClickFocus) == Qt::ClickFocus && widget->isEnabled()))
        widget = widget->isWindow() ? nullptr : widget->parentWidget();
    if (widget)
        widget->setFocus(Qt::MouseFocusReason);
}

void press(const ClickTestRequest& request, const QPoint& global, Qt::MouseButton button)
{
    if (!QApplication::activePopupWidget())
        giveFocus(reachableAt(global));
    sendMouse(request, global, QEvent::MouseButtonPress, button, button);
}

void release(const ClickTestRequest& request, const QPoint& global, Qt::MouseButton button)
{
    sendMouse(request, global, QEvent::MouseButtonRelease, button, Qt::NoButton);
}

void click(const ClickTestRequest& request, const QPoint& global, Qt::MouseButton button)
{
    press(request, global, button);
    release(request, global, button);
}

void doubleClick(const ClickTestRequest& request, const QPoint& global)
{
    // A mouse sends all four; item views take a double click only after the press of the first.
    click(request, global, Qt::LeftButton);
    sendMouse(request, global, QEvent::MouseButtonDblClick, Qt::LeftButton, Qt::LeftButton);
    release(request, global, Qt::LeftButton);
}

ClickTestDrag& drag()
{
    static ClickTestDrag drag;
    return drag;
}

void dragMove(const ClickTestRequest& request, const QPoint& global)
{
    if (drag().isGoingOn()) {
        QCursor::setPos(global);
        drag().move(reachableAt(global), global);
        return;
    }
    // Views begin a drag with the second move of a mouse. The cursor comes last: its own event has no button
    // held, and would begin a drag that nobody leads.
    for (int i = 0; i < 2 && !drag().isGoingOn(); ++i) {
        deliverMouse(request, global, QEvent::MouseMove, Qt::NoButton, Qt::LeftButton);
        // Declarative views begin theirs once they are done with the move.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
        drag().takeOver();
    }
    QCursor::setPos(global);
}

void dragEnd(const ClickTestRequest& request, const QPoint& global)
{
    if (drag().isGoingOn())
        drag().end(reachableAt(global), global);
    else
        release(request, global, Qt::LeftButton);
}

void contextMenu(const ClickTestRequest& request, const QPoint& global)
{
    if (const Target target = targetAt(request, global); target.object) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, target.local.toPoint(), global,
                                modifiersOf(request));
        QCoreApplication::sendEvent(target.object, &event);
        QCursor::setPos(global);
    }
}

void scrollVertical(const ClickTestRequest& request, const QPoint& global)
{
    if (const Target target = targetAt(request, global); target.object) {
        QWheelEvent event(target.local, QPointF(global), QPoint(), QPoint(0, request.scroll.value_or(0)),
                          Qt::NoButton, modifiersOf(request), Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(target.object, &event);
        QCursor::setPos(global);
    }
}

/// In milliseconds. A robot presses faster than any hand: each of its presses is one all the same, and not
/// the bounce of the one before.
quint64 strokeTime()
{
    static quint64 time = 0;
    return time += 2 * static_cast<quint64>(PressGuard::bounce);
}

bool triggerShortcut(QWidget* widget, const Key& key, quint64 time)
{
    QKeyEvent claim(QEvent::ShortcutOverride, key.key, key.modifiers, key.text);
    claim.setTimestamp(time);
    claim.ignore();
    QCoreApplication::sendEvent(widget, &claim);
    if (claim.isAccepted())
        return false;
    const QKeySequence sequence(key.key | static_cast<int>(key.modifiers));
    const QList<QShortcut*> shortcuts = widget->window()->findChildren<QShortcut*>();
    for (QShortcut* shortcut : shortcuts) {
        const auto* owner = qobject_cast<QWidget*>(shortcut->parent());
        if (shortcut->isEnabled() && shortcut->key() == sequence && owner && owner->isVisible() &&
            owner->isEnabled()) {
            Q_EMIT shortcut->activated();
            return true;
        }
    }
    return false;
}

} // namespace

void handleMouse(const ClickTestRequest& request, const QPoint& global)
{
    using Handler = std::function<void(const ClickTestRequest&, const QPoint&)>;
    static const QHash<QString, Handler> handlers = {
        {QStringLiteral("click"), [](auto& r, auto& g) { click(r, g, Qt::LeftButton); }},
        {QStringLiteral("right_click"), [](auto& r, auto& g) { click(r, g, Qt::RightButton); }},
        {QStringLiteral("context_menu"), contextMenu},
        {QStringLiteral("double_click"), doubleClick},
        {QStringLiteral("move_to"),
         [](auto& r, auto& g) { sendMouse(r, g, QEvent::MouseMove, Qt::NoButton, Qt::NoButton); }},
        {QStringLiteral("drag_start"), [](auto& r, auto& g) { press(r, g, Qt::LeftButton); }},
        {QStringLiteral("drag_move"), dragMove},
        {QStringLiteral("drag_end"), dragEnd},
        {QStringLiteral("scroll_vertical"), scrollVertical},
    };
    if (const auto found = handlers.constFind(request.operation); found != handlers.cend())
        (*found)(request, global);
}

/// An open popup, or the widget with focus. Where no window manager has made a window active, the one that
/// would have it; where nothing has it, the window, whose shortcuts work all the same.
static QWidget* keyTarget()
{
    if (QWidget* popup = QApplication::activePopupWidget())
        return popup->focusWidget() ? popup->focusWidget() : popup;
    if (QWidget* widget = QApplication::focusWidget())
        return widget;
    if (QWidget* active = QApplication::activeWindow())
        return active->focusWidget() ? active->focusWidget() : active;
    QWidget* window = mainWindowWidget();
    return window && window->focusWidget() ? window->focusWidget() : window;
}

void handleKeyPress(const QString& keyName)
{
    const Key key = keyOf(keyName);
    const QPointer<QWidget> widget = keyTarget();
    const quint64 time = strokeTime();
    if (key.key == 0 || !widget || triggerShortcut(widget, key, time))
        return;
    QKeyEvent down(QEvent::KeyPress, key.key, key.modifiers, key.text);
    down.setTimestamp(time);
    QCoreApplication::sendEvent(widget, &down);
    if (!widget)
        return;
    QKeyEvent up(QEvent::KeyRelease, key.key, key.modifiers, key.text);
    up.setTimestamp(time);
    QCoreApplication::sendEvent(widget, &up);
}

} // namespace vantrel::clicktest
