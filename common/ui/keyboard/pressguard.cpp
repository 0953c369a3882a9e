#include "common/ui/keyboard/pressguard.h"

#include "common/ui/keyboard/hotkeys.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QShortcut>
#include <QWidget>

#include <algorithm>
#include <array>
#include <utility>

namespace vantrel {

namespace {

constexpr std::array guarded{"take",         "play_pause", "mute_program", "set_inpoint",
                             "set_outpoint", "cue",        "lock_program"};

/// What is typed belongs to the field, however quickly.
bool isTyping(const QKeyEvent& event)
{
    QObject* focused = QGuiApplication::focusObject(); // a declarative view's item, not its widget
    const QString text = event.text();
    // A view of editable names asks for text as well, which goes to the editor that it opens.
    if (!focused || text.isEmpty() || !text.at(0).isPrint() || qobject_cast<QAbstractItemView*>(focused))
        return false;
    QInputMethodQueryEvent query(Qt::ImEnabled);
    QCoreApplication::sendEvent(focused, &query);
    return query.value(Qt::ImEnabled).toBool();
}

} // namespace

PressGuard::PressGuard(Hotkeys* hotkeys, QWidget* window)
    : QObject(window)
    , m_hotkeys(hotkeys)
    , m_window(window)
{
    m_clock.start();
    qApp->installEventFilter(this);
}

bool PressGuard::isGuarded(const QKeyEvent& event) const
{
    const QKeySequence key = Hotkeys::pressed(event);
    return !key.isEmpty() && std::ranges::any_of(guarded, [&](const char* name) {
        return m_hotkeys->mapping(QLatin1String(name)) == key;
    });
}

qint64 PressGuard::timeOf(const QKeyEvent& event) const
{
    return event.timestamp() > 0 ? static_cast<qint64>(event.timestamp()) : m_clock.elapsed();
}

/// A press comes by as a question for the shortcut, then by itself, from one widget to the next: all the
/// same.
bool PressGuard::isFresh(const QKeyEvent& event)
{
    Key& key = m_keys[event.key()];
    if (event.isAutoRepeat())
        return false;
    const qint64 now = timeOf(event);
    // A release that another window got is not waited for.
    if (!std::exchange(key.isDown, true) || now - key.downAt >= bounce) {
        const qint64 sinceUp = now - key.upAt;
        key.isFresh = sinceUp < 0 || sinceUp >= bounce; // a time of another clock says nothing
        key.downAt = now;
    }
    return key.isFresh;
}

bool PressGuard::isTakeElsewhere(QObject* watched, const QKeyEvent& event) const
{
    // At the window itself: nobody below wanted the key.
    const auto* widget = qobject_cast<QWidget*>(watched);
    return widget && widget->isWindow() && widget != m_window && event.type() == QEvent::KeyPress &&
           Hotkeys::pressed(event) == m_hotkeys->mapping(QStringLiteral("take"));
}

bool PressGuard::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    const bool isPress = type == QEvent::KeyPress || type == QEvent::ShortcutOverride;
    if ((!isPress && type != QEvent::KeyRelease) || !watched->isWidgetType())
        return false;
    const auto& press = static_cast<const QKeyEvent&>(*event);
    if (!isPress) {
        if (!press.isAutoRepeat()) {
            Key& key = m_keys[press.key()];
            key.isDown = false;
            key.upAt = timeOf(press);
        }
        return false;
    }
    if (!isGuarded(press) || isTyping(press))
        return false;
    if (!isFresh(press)) {
        event->accept();
        return true;
    }
    if (!isTakeElsewhere(watched, press))
        return false;
    if (QShortcut* take = m_hotkeys->shortcut(QStringLiteral("take")))
        Q_EMIT take->activated();
    event->accept();
    return true;
}

} // namespace vantrel
