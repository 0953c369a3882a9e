#pragma once

#include <QKeySequence>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

#include <functional>

class QKeyEvent;
class QShortcut;

namespace vantrel {

/// The key map in force and the live shortcuts made from it. A change of the map reaches the shortcuts at
/// once. The main window owns it and lends it to the session. Main thread only.
class Hotkeys : public QObject
{
    Q_OBJECT

public:
    /// parent: the window in which the shortcuts live; starts with the defaults, undo and redo wired.
    explicit Hotkeys(QWidget* parent);

    static QMap<QString, QVariant> defaultKeymap();
    const QMap<QString, QVariant>& keymap() const { return m_keymap; }
    const QMap<QString, QList<QShortcut*>>& shortcuts() const { return m_shortcuts; }

    void setDefaults();
    /// Empty for an unknown name.
    QKeySequence mapping(const QString& name) const;
    bool hasMapping(const QString& name) const;
    /// The mapping of the window's hotkeys; the default where it lends none.
    static QKeySequence current(const QString& name);
    /// The key of the event as a key map writes it: Enter for both keys of that name, no Shift where it is in
    /// the character already. Empty for a modifier alone.
    static QKeySequence pressed(const QKeyEvent& event);
    /// The first live shortcut of the name, or null.
    QShortcut* shortcut(const QString& name) const;
    void addMapping(const QString& name, const QKeySequence& sequence);
    /// A shortcut on parent (null: this object's parent) that calls the function; null for an unknown name.
    QShortcut* addShortcut(const QString& name, void (*function)(),
                           Qt::ShortcutContext context = Qt::WindowShortcut, QObject* parent = nullptr);
    /// The same with any callable, which is called for as long as receiver lives.
    QShortcut* addShortcut(const QString& name, QObject* receiver, const std::function<void()>& function,
                           Qt::ShortcutContext context = Qt::WindowShortcut, QObject* parent = nullptr);

    void remap(const QString& name, const QKeySequence& sequence);
    /// Applies the whole key map again.
    void remap();
    void remap(const QMap<QString, QVariant>& keymap);

    void saveKeymap() const;
    /// Applies the stored keys. Where they cannot be used, two actions on one key among them, the defaults
    /// stand and a sentence for the operator comes back; empty otherwise.
    QString loadKeymapFromConfiguration();

Q_SIGNALS:
    void mappingChanged(QString name);

private:
    QMap<QString, QVariant> m_keymap;
    QMap<QString, QList<QShortcut*>> m_shortcuts;
};

} // namespace vantrel
