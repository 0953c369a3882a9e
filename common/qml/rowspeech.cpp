#include "common/qml/rowspeech.h"

#include <QAccessible>
#include <QQuickItem>

namespace vantrel {

void RowSpeech::tell(QQuickItem* row)
{
    if (!row)
        return;
    // As a list of widgets tells of its cells, which have no keyboard of their own either.
    QAccessibleEvent event(row, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
    Q_EMIT told(row);
}

} // namespace vantrel
