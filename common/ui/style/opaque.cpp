#include "common/ui/style/opaque.h"

#include <QEvent>
#include <QWidget>

namespace vantrel {

void keepOpaque(QWidget* widget, const QEvent* event)
{
    if (event->type() == QEvent::Polish || event->type() == QEvent::StyleChange)
        widget->setAttribute(Qt::WA_OpaquePaintEvent);
}

} // namespace vantrel
