import QtQuick
import QtQuick.Templates as T

// iconName: its drawing; keys: the way by the keyboard, at the right.
T.MenuItem {
    id: control

    property string iconName
    property string keys

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: visible ? Theme.barHeight : 0
    leftPadding: Theme.loose
    rightPadding: Theme.loose
    hoverEnabled: true
    Accessible.name: text

    background: Rectangle {
        color: control.highlighted && control.enabled ? Theme.hoverStrong : "transparent"
    }
    contentItem: Item {
        implicitWidth: row.implicitWidth + (control.keys.length > 0 ? shortcut.implicitWidth + 3 * Theme.loose : 0)

        Row {
            id: row

            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.normal

            ZTIcon {
                anchors.verticalCenter: parent.verticalCenter
                name: control.iconName
                color: label.color
            }
            ZTLabel {
                id: label

                anchors.verticalCenter: parent.verticalCenter
                text: control.text
                color: !control.enabled ? Theme.disabled : control.highlighted ? Theme.strong : Theme.text
                Accessible.ignored: true
            }
        }
        ZTLabel {
            id: shortcut

            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            text: control.keys
            color: Theme.dim
            font.pixelSize: fontSizes.caption
            Accessible.ignored: true
        }
    }
}
