#include "common/ui/keyboard/hotkeytip.h"

#include "common/session/session.h"
#include "common/ui/keyboard/hotkeys.h"

#include <QCoreApplication>
#include <QWidget>

namespace vantrel {

QString keyText(const QKeySequence& sequence)
{
    if (sequence == QKeySequence(Qt::Key_Comma))
        return QCoreApplication::translate("HotkeyTip", "comma");
    if (sequence == QKeySequence(Qt::Key_Period))
        return QCoreApplication::translate("HotkeyTip", "full stop");
    if (sequence == QKeySequence(Qt::Key_Return))
        return QCoreApplication::translate("HotkeyTip", "Enter");
    return sequence.toString(QKeySequence::NativeText);
}

void setHotkeyTip(QWidget* widget, const QString& text, const QStringList& names)
{
    const Session* session = Session::instance();
    Hotkeys* hotkeys = session ? session->hotkeys() : nullptr;
    const auto update = [widget, text, names, hotkeys] {
        QStringList keys;
        for (const QString& name : names) {
            if (const QString key = hotkeys ? keyText(hotkeys->mapping(name)) : QString(); !key.isEmpty())
                keys.append(key);
        }
        widget->setToolTip(
            keys.isEmpty() ? text : QStringLiteral("%1 (%2)").arg(text, keys.join(QStringLiteral(", "))));
    };
    update();
    if (hotkeys) {
        QObject::connect(hotkeys, &Hotkeys::mappingChanged, widget, [names, update](const QString& name) {
            if (names.contains(name))
                update();
        });
    }
}

} // namespace vantrel
