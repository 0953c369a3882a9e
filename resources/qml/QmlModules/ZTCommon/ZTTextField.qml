import QtQuick
import QtQuick.Templates as T

T.TextField {
    id: control

    property string tip

    implicitHeight: Theme.barHeight
    implicitWidth: 200
    leftPadding: fontSizes.pad + 2
    rightPadding: fontSizes.pad + 2
    color: enabled ? Theme.strong : Theme.disabled
    selectionColor: Theme.accent
    selectedTextColor: Theme.onAccent
    placeholderTextColor: Theme.faint
    font.family: Qt.application.font.family // the platform has another one for fields
    font.pixelSize: fontSizes.body
    verticalAlignment: TextInput.AlignVCenter
    selectByMouse: true
    hoverEnabled: true
    Accessible.description: tip
    onHoveredChanged: hovered ? toolTips.show(control, tip) : toolTips.hide(control)

    background: Rectangle {
        radius: Theme.radius
        color: Theme.background
        border.width: 1
        border.color: control.activeFocus ? Theme.accent : control.hovered ? Theme.fieldEdge : Theme.hoverStrong
    }
}
