#pragma once

#include <QKeySequence>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

namespace vantrel {

/// Something that an operator does by a key: its name in the key map, the group it is listed in, and what it
/// does in a few words.
struct KeyAction
{
    QString name;
    QString group;
    QString text;
};

/// The key map a fresh installation starts with: a name to a QKeySequence, the platform's standard keys and
/// those of this application.
QMap<QString, QVariant> defaultKeymap();

/// Every action that answers to a key, by group, in the order in which they are listed. The key map names
/// some more, which views that are to come will answer to.
const QList<KeyAction>& keyActions();
/// Null for a name that is not in the list.
const KeyAction* findKeyAction(const QString& name);

/// Why the action cannot have that key, as a sentence for the operator; empty when it can.
QString reservedKeyReason(const QString& action, const QKeySequence& key);

/// The listed action other than this one that holds the key; null when there is none, or no key.
const KeyAction* keyHolder(const QMap<QString, QVariant>& keymap, const QKeySequence& key,
                           const QString& except);

/// What makes a stored value useless as a key map, as a sentence for the operator; empty when it is sound.
QString keymapFault(const QVariant& stored);

/// A sound stored key map over the defaults. An action that it does not know yet goes without its default
/// key where another holds that.
QMap<QString, QVariant> completeKeymap(const QMap<QString, QVariant>& stored);

/// The texts of the key caps that make the sequence, such as "Ctrl" and "Z"; none for an empty one.
QStringList keyCaps(const QKeySequence& key);

} // namespace vantrel
