#include "common/ui/shell/windowmemory.h"

#include "common/session/settings/storedvalue.h"

#include <QEvent>
#include <QMainWindow>
#include <QScreen>
#include <QWindow>

namespace vantrel {

namespace {

constexpr int restMs = 300;
const QString geometryKey = QStringLiteral("Window/Geometry");
const QString tabKey = QStringLiteral("Window/Tab");

} // namespace

WindowMemory::WindowMemory(QMainWindow* window, QSize usual)
    : QObject(window)
    , m_window(window)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(restMs);
    connect(&m_rest, &QTimer::timeout, this, [this] {
        fit();
        save();
    });
    const QByteArray kept = storedValue(geometryKey).toByteArray();
    if (kept.isEmpty() || !window->restoreGeometry(kept))
        window->resize(usual.boundedTo(window->screen()->availableSize()));
    window->installEventFilter(this);
}

void WindowMemory::toggleFullScreen()
{
    m_window->setWindowState(m_window->windowState() ^ Qt::WindowFullScreen);
}

int WindowMemory::tab(int usual) const
{
    return storedValue(tabKey, usual).toInt();
}

void WindowMemory::keepTab(int tab)
{
    storeValue(tabKey, tab);
}

/// What the window manager puts around the window is known only once it stands. Later the operator may have
/// it over two screens, or half out of one.
void WindowMemory::fit()
{
    if (!m_mustFit || !m_window->isVisible() || m_window->isMaximized() || m_window->isFullScreen())
        return;
    const QMargins frame = m_window->windowHandle()->frameMargins();
    const QRect room = m_window->screen()->availableGeometry().marginsRemoved(frame);
    const QRect inner = m_window->geometry();
    if (frame.isNull())
        return;
    m_mustFit = false;
    if (room.contains(inner))
        return;
    QRect fitting(inner.topLeft(), inner.size().boundedTo(room.size()));
    fitting.moveLeft(qBound(room.left(), fitting.left(), room.right() + 1 - fitting.width()));
    fitting.moveTop(qBound(room.top(), fitting.top(), room.bottom() + 1 - fitting.height()));
    m_window->setGeometry(fitting);
}

void WindowMemory::save()
{
    if (m_window->isVisible())
        storeValue(geometryKey, m_window->saveGeometry());
}

bool WindowMemory::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Show:
    case QEvent::WindowStateChange:
        m_mustFit = true;
        [[fallthrough]];
    case QEvent::Resize:
    case QEvent::Move:
        m_rest.start();
        break;
    case QEvent::Close:
        save();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vantrel
