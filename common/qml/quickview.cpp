#include "common/qml/quickview.h"

#include <QQuickItem>
#include <QQuickWindow>

namespace vantrel {

QuickView::QuickView(QQmlEngine* engine, QWidget* parent)
    : QQuickWidget(engine, parent)
{
    setResizeMode(QQuickWidget::SizeRootObjectToView);
    setFocusPolicy(Qt::StrongFocus);
}

QSize QuickView::sizeHint() const
{
    const QQuickItem* root = rootObject();
    const QSizeF wanted = root ? QSizeF(root->implicitWidth(), root->implicitHeight()) : QSizeF();
    return wanted.isEmpty() ? QQuickWidget::sizeHint() : wanted.toSize();
}

/// The first or the last control that Tab reaches.
QQuickItem* QuickView::endOfChain(bool first) const
{
    QQuickItem* root = rootObject();
    return root ? root->nextItemInFocusChain(first) : nullptr;
}

bool QuickView::focusNextPrevChild(bool next)
{
    QQuickItem* now = quickWindow()->activeFocusItem();
    const QQuickItem* last = endOfChain(!next);
    if (!now || now == last)
        return QWidget::focusNextPrevChild(next);
    QQuickItem* to = now->nextItemInFocusChain(next);
    if (!to || to == now)
        return QWidget::focusNextPrevChild(next);
    to->forceActiveFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void QuickView::focusInEvent(QFocusEvent* event)
{
    QQuickWidget::focusInEvent(event);
    if (event->reason() != Qt::TabFocusReason && event->reason() != Qt::BacktabFocusReason)
        return;
    if (QQuickItem* item = endOfChain(event->reason() == Qt::TabFocusReason))
        item->forceActiveFocus(event->reason());
}

} // namespace vantrel
