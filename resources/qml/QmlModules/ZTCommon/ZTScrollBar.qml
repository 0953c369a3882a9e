import QtQuick
import QtQuick.Templates as T

T.ScrollBar {
    id: control

    implicitWidth: fontSizes.bar
    implicitHeight: fontSizes.bar
    minimumSize: Math.min(0.5, 32 / Math.max(height, 1))
    policy: size < 1 ? T.ScrollBar.AlwaysOn : T.ScrollBar.AlwaysOff
    visible: size < 1
    focusPolicy: Qt.NoFocus
    hoverEnabled: true

    contentItem: Rectangle {
        radius: width / 2
        color: control.hovered || control.pressed ? Theme.handleHover : Theme.handle
    }
}
