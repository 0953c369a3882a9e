import QtQml
import QtQuick
import Tessen 1.0
import Tessen.Models 1.0

// All messages, the newest first.
ZTQMLDialog {
    id: dialog

    property NotificationManager manager
    readonly property Instantiator waiting: Instantiator {
        model: PendingNotificationModel { manager: dialog.manager }
        delegate: QtObject {}
    }

    name: "NotificationDialog"
    title: qsTr("Notifications")
    acceptText: qsTr("ACKNOWLEDGE ALL")
    cancelText: qsTr("CLOSE")
    acceptEnabled: waiting.count > 0
    onAccepted: list.acceptAll()

    FocusScope {
        implicitWidth: Theme.scaled(512)
        implicitHeight: Theme.scaled(280)
        focus: true

        NotificationList {
            id: list

            anchors { fill: parent; margins: 1 }
            manager: dialog.manager
        }
        ZTLabel {
            anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            visible: list.count === 0
            color: Theme.dim
            text: qsTr("Nothing has been reported since the start.")
        }
        Rectangle {
            anchors.fill: parent
            color: "transparent"
            border.width: 1
            border.color: list.activeFocus ? Theme.focus : Theme.line
            radius: Theme.radius
        }
    }
}
