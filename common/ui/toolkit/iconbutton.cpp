#include "common/ui/toolkit/iconbutton.h"

#include "common/session/settings/configuration.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"

#include <QPainter>
#include <QStyleOptionButton>

namespace vantrel {

using colors::getColor;

IconButton::IconButton(QWidget* parent)
    : IconButton(QString(), {}, parent)
{
}

IconButton::IconButton(const QString& icon, const QString& disabledIcon, QWidget* parent)
    : PushButton(parent)
    , m_icon(icon)
    , m_disabledIcon(disabledIcon)
    , m_normal(getColor(colors::Zt_white_80))
    , m_hover(getColor(colors::White))
    , m_pressed(getColor(colors::Zt_orange))
    , m_checked(getColor(colors::Zt_orange))
    , m_sizes({{FontSize::Small, {26, 26}},
               {FontSize::Medium, {32, 32}},
               {FontSize::Large, {42, 42}},
               {FontSize::Huge, {54, 54}}})
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    followFontSize(this, [this](FontSize) {
        updateGeometry();
        update();
    });
}

void IconButton::setToggleIcons(const QString& on, const QString& off)
{
    m_onIcon = on;
    m_icon = off;
    setCheckable(true);
    update();
}

void IconButton::setEffects(const QColor& hover, const QColor& pressed)
{
    m_hover = hover;
    m_pressed = pressed;
    update();
}

void IconButton::setIconColor(const QColor& colour)
{
    m_normal = colour;
    update();
}

void IconButton::setCheckedColor(const QColor& colour)
{
    m_checked = colour;
    update();
}

void IconButton::setDisabledColor(const QColor& colour)
{
    m_disabled = colour;
    update();
}

void IconButton::setSizes(const QMap<FontSize, QSize>& sizes)
{
    m_sizes = sizes;
    updateGeometry();
    update();
}

void IconButton::setIconShare(double share)
{
    m_share = qBound(0.1, share, 1.0);
    update();
}

QString IconButton::currentIcon() const
{
    if (!isEnabled() && !m_disabledIcon.isEmpty())
        return m_disabledIcon;
    return isChecked() && !m_onIcon.isEmpty() ? m_onIcon : m_icon;
}

QColor IconButton::currentColor() const
{
    if (!isEnabled())
        return m_disabled.isValid() ? m_disabled : m_normal;
    if (isDown())
        return m_pressed;
    // A segment is filled with the accent while checked, and its icon must be read on that.
    if (isChecked() && property("class") == QLatin1String("segment"))
        return getColor(colors::Slate_grey_900);
    if (isChecked() && m_checked.isValid())
        return m_checked;
    return underMouse() ? m_hover : m_normal;
}

QSize IconButton::sizeHint() const
{
    return m_sizes.value(currentFontSize(), QSize(32, 32));
}

QSize IconButton::minimumSizeHint() const
{
    return sizeHint();
}

void IconButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.icon = {};
    option.text.clear();
    style()->drawControl(QStyle::CE_PushButton, &option, &painter, this);
    const QString icon = currentIcon();
    if (icon.isEmpty())
        return;
    const int side = qRound(qMin(width(), height()) * m_share);
    const QPixmap pixmap = IconCache::pixmap(icon, currentColor(), QSize(side, side), devicePixelRatioF());
    // The whole drawing at once: where a fill and its outline overlap, it must not get denser.
    if (!isEnabled() && !m_disabled.isValid())
        painter.setOpacity(0.5); // of white at 80 %: 40 % in all
    painter.drawPixmap((width() - side) / 2, (height() - side) / 2, pixmap);
}

} // namespace vantrel
