#include "common/ui/keyboard/hotkeys.h"

#include "common/command/commandgate.h"
#include "common/session/session.h"
#include "common/session/settings/configuration.h"
#include "common/session/settings/keymap.h"

#include <QKeyEvent>
#include <QLoggingCategory>
#include <QShortcut>
#include <QUndoStack>
#include <QWidget>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.ui")

QUndoStack* undoStack()
{
    const Session* session = Session::instance();
    return session ? session->getQUndoStack() : nullptr;
}

void undo()
{
    QUndoStack* stack = undoStack();
    if (stack && (!stack->canUndo() || CommandGate::passes(stack, QObject::tr("Undo"))))
        stack->undo();
}

void redo()
{
    QUndoStack* stack = undoStack();
    if (stack && (!stack->canRedo() || CommandGate::passes(stack, QObject::tr("Redo"))))
        stack->redo();
}

} // namespace

Hotkeys::Hotkeys(QWidget* parent)
    : QObject(parent)
{
    setDefaults();
}

QMap<QString, QVariant> Hotkeys::defaultKeymap()
{
    return vantrel::defaultKeymap();
}

void Hotkeys::setDefaults()
{
    m_keymap = defaultKeymap();
    // The two of this object's own are made once; a second call only brings their keys back.
    if (m_shortcuts.isEmpty()) {
        addShortcut(QStringLiteral("undo"), undo, Qt::WindowShortcut);
        addShortcut(QStringLiteral("redo"), redo, Qt::WindowShortcut);
    }
    remap();
}

QKeySequence Hotkeys::mapping(const QString& name) const
{
    return m_keymap.value(name).value<QKeySequence>();
}

bool Hotkeys::hasMapping(const QString& name) const
{
    return m_keymap.contains(name);
}

QKeySequence Hotkeys::current(const QString& name)
{
    const Session* session = Session::instance();
    const Hotkeys* hotkeys = session ? session->hotkeys() : nullptr;
    return hotkeys ? hotkeys->mapping(name) : defaultKeymap().value(name).value<QKeySequence>();
}

QKeySequence Hotkeys::pressed(const QKeyEvent& event)
{
    static const QList<int> modifierKeys = {Qt::Key_Control,  Qt::Key_Shift,   Qt::Key_Alt,
                                            Qt::Key_Meta,     Qt::Key_AltGr,   Qt::Key_Super_L,
                                            Qt::Key_Super_R,  Qt::Key_Hyper_L, Qt::Key_Hyper_R,
                                            Qt::Key_CapsLock, Qt::Key_NumLock, Qt::Key_ScrollLock};
    int key = event.key();
    if (key <= 0 || key == Qt::Key_unknown || modifierKeys.contains(key))
        return {};
    Qt::KeyboardModifiers modifiers = event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    if (key == Qt::Key_Enter)
        key = Qt::Key_Return;
    if (key == Qt::Key_Backtab)
        key = Qt::Key_Tab;
    // "!" is typed with Shift on one keyboard and without on another.
    const bool isSymbol =
        key < 0x80 && QChar(key).isPrint() && !QChar(key).isLetterOrNumber() && key != Qt::Key_Space;
    if (isSymbol)
        modifiers &= ~Qt::ShiftModifier;
    return QKeyCombination(modifiers, static_cast<Qt::Key>(key));
}

QShortcut* Hotkeys::shortcut(const QString& name) const
{
    const QList<QShortcut*> all = m_shortcuts.value(name);
    return all.isEmpty() ? nullptr : all.first();
}

void Hotkeys::addMapping(const QString& name, const QKeySequence& sequence)
{
    m_keymap.insert(name, QVariant::fromValue(sequence));
    Q_EMIT mappingChanged(name);
}

QShortcut* Hotkeys::addShortcut(const QString& name, void (*function)(), Qt::ShortcutContext context,
                                QObject* parent)
{
    return addShortcut(name, this, function, context, parent);
}

QShortcut* Hotkeys::addShortcut(const QString& name, QObject* receiver, const std::function<void()>& function,
                                Qt::ShortcutContext context, QObject* parent)
{
    QObject* owner = parent ? parent : this->parent();
    if (!owner || !hasMapping(name))
        return nullptr;
    auto* shortcut = new QShortcut(mapping(name), owner);
    shortcut->setContext(context);
    connect(shortcut, &QShortcut::activated, receiver, function);
    connect(shortcut, &QObject::destroyed, this,
            [this, name, shortcut] { m_shortcuts[name].removeAll(shortcut); });
    m_shortcuts[name].append(shortcut);
    return shortcut;
}

void Hotkeys::remap(const QString& name, const QKeySequence& sequence)
{
    addMapping(name, sequence);
    for (QShortcut* shortcut : m_shortcuts.value(name))
        shortcut->setKey(sequence);
}

void Hotkeys::remap()
{
    remap(QMap<QString, QVariant>(m_keymap));
}

void Hotkeys::remap(const QMap<QString, QVariant>& keymap)
{
    for (auto it = keymap.cbegin(); it != keymap.cend(); ++it)
        remap(it.key(), it.value().value<QKeySequence>());
}

void Hotkeys::saveKeymap() const
{
    if (Configuration* settings = configuration())
        settings->setValue(KEYMAP, m_keymap);
}

QString Hotkeys::loadKeymapFromConfiguration()
{
    const Configuration* settings = configuration();
    const QString key = Configuration::key(KEYMAP);
    QString fault;
    if (settings && settings->contains(key))
        fault = keymapFault(settings->value(key));
    // The file is parsed as it is read, so that its state is known only now.
    if (settings && settings->status() == QSettings::FormatError)
        fault = tr("The settings file %1 is damaged.").arg(settings->fileName());
    if (fault.isEmpty()) {
        remap(completeKeymap(configurationValue(KEYMAP).toMap()));
        return {};
    }
    qCWarning(log).noquote() << fault;
    setDefaults();
    return fault;
}

} // namespace vantrel
