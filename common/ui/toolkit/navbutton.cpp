#include "common/ui/toolkit/navbutton.h"

#include "common/ui/style/colors.h"
#include "common/ui/style/dynamicstyle.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"

namespace vantrel {

NavButton::NavButton(const QString& text, const QString& icon, QWidget* parent)
    : PushButton(text, parent)
    , m_icon(icon)
{
    setCheckable(false);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setDynamicStyle(this, "active", false);
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

void NavButton::updateIcon()
{
    if (!m_icon.isEmpty())
        setIcon(tintedIcon(m_icon, colors::getColor(m_active ? colors::Zt_orange : colors::Zt_white_70),
                           iconSize()));
}

} // namespace vantrel
