#include "common/qml/quickview.h"

#include "common/qml/qmlmanager.h"

#include <QLoggingCategory>
#include <QQuickItem>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.qml")

QQmlEngine* initializedEngine()
{
    QMLManager::instance()->initialize();
    return QMLManager::instance()->engine();
}

/// With a graphics card the whole window that holds a declarative view would be put together on it, the
/// pictures of both channels among the rest; and there are consoles without one.
QQmlEngine* drawnBySoftware(QQmlEngine* engine)
{
    static const bool once = (QQuickWindow::setGraphicsApi(QSGRendererInterface::Software), true);
    Q_UNUSED(once);
    return engine;
}

} // namespace

QuickView::QuickView(QWidget* parent)
    : QuickView(initializedEngine(), parent)
{
}

QuickView::QuickView(QQmlEngine* engine, QWidget* parent)
    : QQuickWidget(drawnBySoftware(engine), parent)
{
    setResizeMode(QQuickWidget::SizeRootObjectToView);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QQuickWidget::sceneGraphError, this, &QuickView::onSceneGraphError);
}

void QuickView::onSceneGraphError(QQuickWindow::SceneGraphError error, const QString& message)
{
    qCWarning(log) << "QML error:" << error << message;
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

/// The release of a press that became a drag, and opened another page, goes there: none is waited for.
void QuickView::hideEvent(QHideEvent* event)
{
    QQuickWidget::hideEvent(event);
    if (QQuickItem* pressed = quickWindow()->mouseGrabberItem())
        pressed->ungrabMouse();
}

} // namespace vantrel
