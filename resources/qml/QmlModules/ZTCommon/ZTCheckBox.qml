import QtQuick
import QtQuick.Templates as T

T.CheckBox {
    id: control

    property string tip

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Theme.barHeight
    leftPadding: 3 + fontSizes.check + 2 + Theme.normal
    rightPadding: 3
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    Accessible.name: text
    Accessible.description: tip
    onHoveredChanged: hovered ? toolTips.show(control, tip) : toolTips.hide(control)

    background: Rectangle {
        color: "transparent"
        radius: Theme.radius
        border.width: 1
        border.color: control.visualFocus ? Theme.focus : "transparent"
    }
    indicator: Rectangle {
        x: 3
        anchors.verticalCenter: parent.verticalCenter
        width: fontSizes.check + 2
        height: width
        radius: 3
        color: !control.checked ? Theme.field : control.enabled ? Theme.accent : Theme.accentVeil
        border.color: !control.enabled ? Theme.handle : control.checked ? Theme.accent
                    : control.hovered ? Theme.dim : Theme.faint

        ZTIcon {
            anchors.centerIn: parent
            side: parent.width
            name: "check"
            color: control.enabled ? Theme.onAccent : Theme.disabled
            visible: control.checked
        }
    }
    contentItem: ZTLabel {
        text: control.text
        color: control.enabled ? Theme.text : Theme.disabled
        Accessible.ignored: true
    }
}
