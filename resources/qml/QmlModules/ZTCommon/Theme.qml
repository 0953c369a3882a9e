pragma Singleton
import QtQuick
import Tessen.Utils 1.0

// The colours of the style sheet by what they are for, and its scale of distances.
QtObject {
    readonly property color background: colorHelper.color(Vantrel.Slate_grey_900)
    readonly property color panel: colorHelper.color(Vantrel.Slate_grey_800)
    readonly property color raised: colorHelper.color(Vantrel.Slate_grey_700)
    readonly property color outline: colorHelper.color(Vantrel.Slate_grey_500)
    readonly property color handle: colorHelper.color(Vantrel.Slate_grey_400)
    readonly property color handleHover: colorHelper.color(Vantrel.Slate_grey_300)
    readonly property color text: colorHelper.color(Vantrel.Zt_white_80)
    readonly property color strong: colorHelper.color(Vantrel.White)
    readonly property color dim: colorHelper.color(Vantrel.Zt_white_70)
    readonly property color faint: colorHelper.color(Vantrel.Zt_white_50)
    readonly property color disabled: colorHelper.color(Vantrel.Button_text_disabled)
    readonly property color disabledFill: colorHelper.color(Vantrel.Button_background_disabled)
    readonly property color line: colorHelper.color(Vantrel.Zt_white_8)
    readonly property color veil: colorHelper.color(Vantrel.Zt_white_4)
    readonly property color hover: colorHelper.color(Vantrel.Zt_white_8)
    readonly property color hoverStrong: colorHelper.color(Vantrel.Zt_white_15)
    readonly property color fieldEdge: colorHelper.color(Vantrel.Zt_white_30)
    readonly property color field: colorHelper.color(Vantrel.Zt_black_30)
    readonly property color shade: colorHelper.color(Vantrel.Zt_black_50)
    readonly property color accent: colorHelper.color(Vantrel.Zt_orange)
    readonly property color accentHover: colorHelper.color(Vantrel.Orange_light)
    readonly property color accentPressed: colorHelper.color(Vantrel.Orange)
    readonly property color accentVeil: colorHelper.color(Vantrel.Zt_orange_20)
    readonly property color onAccent: colorHelper.color(Vantrel.Slate_grey_900)
    readonly property color focus: colorHelper.color(Vantrel.Zt_blue_lighter)
    readonly property color good: colorHelper.color(Vantrel.Zt_green_lighter)
    readonly property color bad: colorHelper.color(Vantrel.Red_error)
    readonly property color program: colorHelper.color(Vantrel.Zt_red)
    readonly property color notice: colorHelper.color(Vantrel.Zt_spot_color)

    readonly property int tight: 4
    readonly property int normal: 8
    readonly property int loose: 12
    readonly property int radius: 4
    readonly property int panelRadius: 6
    // Of a row of a list, and of a bar of buttons.
    readonly property int rowHeight: fontSizes.body + 2 * fontSizes.padY + 6
    readonly property int barHeight: Math.ceil(fontSizes.body * 1.25) + 2 * fontSizes.padY + 2

    // A length of the Medium layout at the text size in force.
    function scaled(pixels) { return (fontSizes.index, fontSizes.scaled(pixels)) }
}
