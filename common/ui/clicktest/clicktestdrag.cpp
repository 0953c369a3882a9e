#include "common/ui/clicktest/clicktestdrag.h"

#include <QApplication>
#include <QDrag>
#include <QDropEvent>

namespace vantrel {

void ClickTestDrag::takeOver()
{
    const QDrag* drag = nullptr;
    for (const QWidget* widget : QApplication::allWidgets()) {
        if (!drag)
            drag = widget->findChild<QDrag*>(QString(), Qt::FindDirectChildrenOnly);
    }
    if (!drag || !drag->mimeData() || isGoingOn())
        return;
    // The drag itself is over, and goes with the next turn of the event loop.
    m_data = std::make_unique<QMimeData>();
    for (const QString& format : drag->mimeData()->formats())
        m_data->setData(format, drag->mimeData()->data(format));
    m_actions = drag->supportedActions();
    m_isAccepted = false;
}

void ClickTestDrag::move(QWidget* target, const QPoint& global)
{
    if (target != m_over) {
        leave();
        m_over = target;
        if (target) {
            QDragEnterEvent enter(target->mapFromGlobal(global), m_actions, m_data.get(), Qt::LeftButton,
                                  Qt::NoModifier);
            QCoreApplication::sendEvent(target, &enter);
        }
    }
    if (!target)
        return;
    QDragMoveEvent move(target->mapFromGlobal(global), m_actions, m_data.get(), Qt::LeftButton,
                        Qt::NoModifier);
    move.setDropAction(Qt::CopyAction);
    move.ignore();
    QCoreApplication::sendEvent(target, &move);
    m_isAccepted = move.isAccepted();
}

void ClickTestDrag::end(QWidget* target, const QPoint& global)
{
    if (target != m_over)
        move(target, global);
    if (target && m_isAccepted) {
        QDropEvent drop(target->mapFromGlobal(global), m_actions, m_data.get(), Qt::NoButton, Qt::NoModifier);
        drop.setDropAction(Qt::CopyAction);
        m_over = nullptr;
        QCoreApplication::sendEvent(target, &drop);
    }
    leave();
    m_data.reset();
}

void ClickTestDrag::leave()
{
    m_isAccepted = false;
    if (!m_over)
        return;
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(m_over, &leave);
    m_over = nullptr;
}

} // namespace vantrel
