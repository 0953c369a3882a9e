import QtQuick
import QtQuick.Templates as T

// A button: a drawing, a text or both. kind is that of the style sheet: "", "accent", "flat". One whose menu is open
// says nothing.
T.Button {
    id: control

    property string iconName
    property string tip
    property string kind
    property bool isOpen: false
    readonly property bool isAccent: kind === "accent"
    readonly property bool isFlat: kind === "flat"
    readonly property color ink: !enabled ? Theme.disabled : isAccent ? Theme.onAccent
                               : hovered || checked ? Theme.strong : Theme.text
    property color iconInk: ink
    property int iconSide: fontSizes.icon

    implicitHeight: Theme.barHeight
    implicitWidth: text.length > 0 ? implicitContentWidth + leftPadding + rightPadding : implicitHeight
    leftPadding: text.length > 0 ? (iconName.length > 0 ? fontSizes.pad + 4 : 13) : 0
    rightPadding: text.length > 0 ? 13 : 0
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: text.length > 0 ? text : tip
    Accessible.description: tip
    Accessible.onPressAction: if (enabled) clicked()

    onIsOpenChanged: toolTips.hide(control)
    onHoveredChanged: hovered && !isOpen ? toolTips.show(control, tip) : toolTips.hide(control)
    onPressed: toolTips.hide(control)
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    // It has the keyboard by Tab only, and then no hotkey takes its key.
    Keys.onShortcutOverride: event => {
        event.accepted = event.key === Qt.Key_Space && event.modifiers === Qt.NoModifier
    }

    background: Rectangle {
        radius: Theme.radius
        color: !control.enabled ? (control.isFlat ? "transparent" : Theme.disabledFill)
             : control.isAccent ? (control.pressed ? Theme.accentPressed
                                                   : control.hovered ? Theme.accentHover : Theme.accent)
             : control.checked ? Theme.accentVeil
             : control.pressed ? Theme.veil
             : control.hovered ? (control.isFlat ? Theme.hover : Theme.hoverStrong)
             : control.isFlat ? "transparent" : Theme.hover
        border.width: 1
        border.color: control.visualFocus ? Theme.focus : control.checked ? Theme.accent
                    : control.enabled && !control.isFlat && !control.isAccent ? Theme.line : "transparent"
    }
    contentItem: Item {
        implicitWidth: content.implicitWidth

        Row {
            id: content

            anchors.centerIn: parent
            spacing: fontSizes.pad

            ZTIcon {
                anchors.verticalCenter: parent.verticalCenter
                name: control.iconName
                color: control.iconInk
                side: control.iconSide
                visible: name.length > 0
            }
            ZTLabel {
                anchors.verticalCenter: parent.verticalCenter
                text: control.text
                visible: text.length > 0
                color: control.ink
                font.weight: control.isAccent ? Font.DemiBold : Font.Medium
                Accessible.ignored: true
            }
        }
    }
}
