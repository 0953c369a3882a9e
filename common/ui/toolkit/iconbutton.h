#pragma once

#include "common/session/settings/fontsize.h"
#include "common/ui/toolkit/pushbutton.h"

#include <QColor>
#include <QMap>
#include <QSize>

namespace vantrel {

/// A square button that is its icon: drawn in the text's colour, lighter under the mouse, in the accent while
/// checked, at 40 % while disabled. Icons are paths (":/icons/plus.svg") or plain names ("plus").
class IconButton : public PushButton
{
    Q_OBJECT

public:
    /// The disabled drawing, or the icon itself without one, is shown at 40 %.
    explicit IconButton(const QString& icon, const QString& disabledIcon = {}, QWidget* parent = nullptr);
    explicit IconButton(QWidget* parent = nullptr);

    /// Makes the button checkable, with one drawing while checked and another while not.
    void setToggleIcons(const QString& on, const QString& off);
    /// The icon's colours under the mouse and while pressed.
    void setEffects(const QColor& hover, const QColor& pressed);
    void setIconColor(const QColor& colour);
    /// The icon's colour while checked; an invalid one leaves it as it is.
    void setCheckedColor(const QColor& colour);
    /// The icon's colour while disabled, for one that is a sign and no button; an invalid one dims it.
    void setDisabledColor(const QColor& colour);
    /// The button's square by text size, in pixels; the default is 32 at Medium. The icon takes 5/8 of it.
    void setSizes(const QMap<FontSize, QSize>& sizes);
    /// The icon's share of the button's side, 0 to 1.
    void setIconShare(double share);

    /// The drawing in use in the present state, and its colour.
    QString currentIcon() const;
    QColor currentColor() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_icon;
    QString m_disabledIcon;
    QString m_onIcon;
    QColor m_normal;
    QColor m_hover;
    QColor m_pressed;
    QColor m_checked;
    QColor m_disabled;
    QMap<FontSize, QSize> m_sizes;
    double m_share = 0.625;
};

} // namespace vantrel
