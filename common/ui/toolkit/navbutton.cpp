#include "common/ui/toolkit/navbutton.h"

#include "common/ui/style/colors.h"
#include "common/ui/style/dynamicstyle.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"

#include <QDragEnterEvent>

namespace vantrel {

using namespace std::chrono_literals;

NavButton::NavButton(const QString& text, const QString& icon, QWidget* parent)
    : PushButton(text, parent)
    , m_icon(icon)
{
    setCheckable(false);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setDynamicStyle(this, "active", false);
    m_dragRest.setSingleShot(true);
    m_dragRest.setInterval(500ms);
    connect(&m_dragRest, &QTimer::timeout, this, &QAbstractButton::click);
    followFontSize(this, [this](FontSize size) {
        setIconSize(QSize(iconExtent(size), iconExtent(size)));
        updateIcon();
    });
}

void NavButton::setActive(bool active)
{
    m_active = active;
    setDynamicStyle(this, "active", active);
    updateIcon();
}

/// Nothing can be dropped on the button itself, which the mouse shows all the while.
void NavButton::dragEnterEvent(QDragEnterEvent* event)
{
    event->setDropAction(Qt::IgnoreAction);
    event->accept(); // else it hears no more of the drag
    if (!m_active)
        m_dragRest.start();
}

void NavButton::dragLeaveEvent(QDragLeaveEvent*)
{
    m_dragRest.stop();
}

void NavButton::updateIcon()
{
    if (!m_icon.isEmpty())
        setIcon(tintedIcon(m_icon, colors::getColor(m_active ? colors::Zt_orange : colors::Zt_white_70),
                           iconSize()));
}

} // namespace vantrel
