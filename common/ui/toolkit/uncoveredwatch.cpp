#include "common/ui/toolkit/uncoveredwatch.h"

#include "common/ui/toolkit/uncovered.h"

#include <QEvent>
#include <QWidget>

namespace vantrel {

UncoveredWatch::UncoveredWatch(QWidget* window)
    : QObject(window)
    , m_window(window)
{
    m_turn.setSingleShot(true);
    m_turn.setInterval(0);
    connect(&m_turn, &QTimer::timeout, this, &UncoveredWatch::moved);
}

/// A widget is not told that what it lies in was moved.
void UncoveredWatch::follow()
{
    for (QWidget* widget : keptUncovered(*m_window)) {
        for (; widget && widget != m_window; widget = widget->parentWidget())
            widget->installEventFilter(this); // which keeps one of each
    }
}

bool UncoveredWatch::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
        m_turn.start();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vantrel
