#include "common/ui/timecode/accessibletime.h"

#include "common/ui/timecode/timecodedisplay.h"

namespace vantrel {

AccessibleTime::AccessibleTime(QWidget* display)
    : QAccessibleWidget(display, QAccessible::StaticText)
{
}

void AccessibleTime::install()
{
    [[maybe_unused]] static const bool once = [] {
        QAccessible::installFactory([](const QString& name, QObject* object) -> QAccessibleInterface* {
            return name == QLatin1String("vantrel::TimecodeDisplay")
                       ? new AccessibleTime(static_cast<QWidget*>(object))
                       : nullptr;
        });
        return true;
    }();
}

QString AccessibleTime::text(QAccessible::Text kind) const
{
    return kind == QAccessible::Value ? static_cast<const TimecodeDisplay*>(widget())->text()
                                      : QAccessibleWidget::text(kind);
}

} // namespace vantrel
