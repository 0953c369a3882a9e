import QtQuick
import QtQuick.Templates as T

T.TextField {
    id: control

    property string tip
    // What stands in it cannot be taken.
    property bool isFaulty: false
    // Over the row of a list it hides what stands there.
    property color fill: enabled ? Theme.field : "transparent"

    implicitHeight: Theme.barHeight
    implicitWidth: 200
    leftPadding: fontSizes.pad2 + 3
    rightPadding: fontSizes.pad2 + 3
    color: enabled ? Theme.strong : Theme.disabled
    selectionColor: Theme.accent
    selectedTextColor: Theme.onAccent
    placeholderTextColor: enabled ? Theme.dim : Theme.disabled
    font.family: Qt.application.font.family // the platform has another one for fields
    font.pixelSize: fontSizes.body
    verticalAlignment: TextInput.AlignVCenter
    selectByMouse: true
    hoverEnabled: true
    Accessible.description: tip
    onHoveredChanged: hovered ? toolTips.show(control, tip) : toolTips.hide(control)

    ZTLabel {
        anchors { fill: parent; leftMargin: control.leftPadding; rightMargin: control.rightPadding }
        text: control.placeholderText
        color: control.placeholderTextColor
        visible: control.text.length === 0 && control.preeditText.length === 0
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: Theme.radius
        color: control.fill
        border.width: 1
        border.color: !control.enabled ? Theme.line : control.isFaulty ? Theme.bad : control.activeFocus ? Theme.accent
                    : control.hovered ? Theme.fieldEdge : Theme.hoverStrong
    }
}
