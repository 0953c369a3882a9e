#include "common/ui/toolkit/seenupdate.h"

#include <QEvent>
#include <QWidget>

#include <utility>

namespace vantrel {

SeenUpdate::SeenUpdate(QWidget* widget, std::function<void()> update)
    : QObject(widget)
    , m_widget(widget)
    , m_update(std::move(update))
{
    m_soon.setSingleShot(true);
    connect(&m_soon, &QTimer::timeout, this, [this] {
        if (m_widget->isVisible())
            run();
    });
    widget->installEventFilter(this);
}

void SeenUpdate::ask()
{
    if (!std::exchange(m_isDue, true) && m_widget->isVisible())
        m_soon.start(0);
}

bool SeenUpdate::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show)
        run();
    return QObject::eventFilter(watched, event);
}

void SeenUpdate::run()
{
    if (std::exchange(m_isDue, false))
        m_update();
}

} // namespace vantrel
