#pragma once

#include <QColor>
#include <QObject>

/// The colour table of the application: the one source for painting code, the style sheet and declarative
/// views.
namespace vantrel::colors {

Q_NAMESPACE

enum ColorCode : int {
    Transparent,
    White,
    Black,
    Blue,
    Very_dark_navy_blue,
    Deep_navy_blue,
    Grey_darker,
    Grey_lighter,
    Grey_grey,
    Slate_grey_900,
    Slate_grey_800,
    Slate_grey_700,
    Slate_grey_700_light,
    Slate_grey_600,
    Slate_grey_500,
    Slate_grey_400,
    Slate_grey_400_lighten,
    Slate_grey_300,
    Slate_grey_200,
    Slate_grey_100,
    Slate_grey_50,
    Red_red,
    Red_new_tint,
    Red_error,
    Blue_button_focus,
    Blue_button_active,
    Blue_button_hover,
    Red_button_focus,
    Red_button_hover,
    Green_primary,
    Green_green,
    Orange,
    Orange_light,
    Seethroughwhite,
    Zt_orange,
    Zt_orange_10,
    Zt_orange_20,
    Zt_white_4,
    Zt_white_8,
    Zt_white_15,
    Zt_white_30,
    Zt_white_50,
    Zt_white_70,
    Zt_white_80,
    Zt_black_15,
    Zt_black_30,
    Zt_black_50,
    Zt_black_70,
    Zt_black_80,
    Zt_black_shadow,
    Zt_blue,
    Zt_blue_light,
    Zt_blue_lighter,
    Zt_green,
    Zt_green_3,
    Zt_green_10,
    Zt_green_20,
    Zt_green_30,
    Zt_green_lighter,
    Zt_red,
    Zt_red_3,
    Zt_red_10,
    Zt_red_20,
    Zt_red_30,
    Zt_red_primary,
    Zt_slate_grey_50,
    Zt_spot_color,
    Button_background_disabled,
    Button_text_disabled,
    Notification_info,
    Notification_warning,
    Notification_error,
    Notification_checked,
    Opaque_frame_1,
    Opaque_frame_2,
};
Q_ENUM_NS(ColorCode)

enum ColorGroup : int {
    TransparentColorGroup,
    OpaqueColorGroup,
    RedColorGroup,
    GreenColorGroup,
    OrangeColorGroup,
};
Q_ENUM_NS(ColorGroup)

/// The colour of a code; an invalid colour for a number that is none.
QColor getColor(ColorCode code);

/// The table as declarative views see it.
class ColorHelper : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    Q_INVOKABLE QColor color(vantrel::colors::ColorCode code) const;
};

} // namespace vantrel::colors
