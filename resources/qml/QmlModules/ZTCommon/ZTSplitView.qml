import QtQuick
import QtQuick.Templates as T

T.SplitView {
    id: split

    handle: Item {
        implicitWidth: Theme.normal
        implicitHeight: Theme.normal

        Rectangle {
            readonly property bool lies: split.orientation === Qt.Vertical

            anchors.centerIn: parent
            width: lies ? Math.min(64, parent.width) : 2
            height: lies ? 2 : Math.min(64, parent.height)
            radius: 1
            color: parent.T.SplitHandle.pressed ? Theme.accent
                 : parent.T.SplitHandle.hovered ? Theme.handleHover : Theme.hover
        }
    }
}
