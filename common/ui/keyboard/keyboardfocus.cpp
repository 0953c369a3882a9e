#include "common/ui/keyboard/keyboardfocus.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QFocusEvent>
#include <QKeyEvent>

namespace vantrel {

KeyboardFocus::KeyboardFocus(QWidget* window)
    : QObject(window)
    , m_window(window)
{
    qApp->installEventFilter(this);
}

void KeyboardFocus::onFocusIn(Qt::FocusReason reason)
{
    // The window and its menus give back the focus that they took.
    const bool isReturn = reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason ||
                          reason == Qt::MenuBarFocusReason;
    if (!isReturn)
        m_byTab = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
}

bool KeyboardFocus::isPlainSpace(const QKeyEvent* event) const
{
    return event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier;
}

bool KeyboardFocus::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    const bool isKey =
        type == QEvent::ShortcutOverride || type == QEvent::KeyPress || type == QEvent::KeyRelease;
    if (type != QEvent::FocusIn && !isKey)
        return false;
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget || widget->window() != m_window)
        return false;
    if (type == QEvent::FocusIn) {
        onFocusIn(static_cast<QFocusEvent*>(event)->reason());
        return false;
    }
    const auto* box = qobject_cast<QComboBox*>(widget);
    const bool isPressable = qobject_cast<QAbstractButton*>(widget) || (box && !box->isEditable());
    if (!isPressable || !widget->hasFocus() || !isPlainSpace(static_cast<QKeyEvent*>(event)))
        return false;
    if (!m_byTab)
        return type != QEvent::ShortcutOverride; // swallowed where no hotkey takes it
    if (type != QEvent::ShortcutOverride)
        return false;
    event->accept();
    return true;
}

} // namespace vantrel
