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
        implicitWidth: row.implicitWidth
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
            // Room between the text and its keys.
            Item {
                width: Theme.loose * 2
                height: 1
                visible: shortcut.text.length > 0
            }
            ZTLabel {
                id: shortcut

                anchors.verticalCenter: parent.verticalCenter
                text: control.keys
                visible: text.length > 0
                color: Theme.faint
                font.pixelSize: fontSizes.caption
                Accessible.ignored: true
            }
        }
    }
}
