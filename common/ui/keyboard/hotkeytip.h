#pragma once

#include <QKeySequence>
#include <QStringList>

class QWidget;

namespace vantrel {

/// The key as an operator reads it: "Space", "comma" rather than ",". Empty for an empty sequence.
QString keyText(const QKeySequence& sequence);

/// Gives the widget the text as its tooltip, with the keys that the key map has for the names after it:
/// "Perform take (F12)". It follows the key map; without hotkeys, or for unknown names, it is the text alone.
void setHotkeyTip(QWidget* widget, const QString& text, const QStringList& names);

} // namespace vantrel
