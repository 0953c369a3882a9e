import QtQuick
import Tessen 1.0

// How many messages of each kind nobody has acknowledged, the gravest first. It has no size while there are none.
Item {
    id: bar

    property NotificationManager manager
    property QtObject dialog
    property var counted: ({})
    readonly property bool isCounting: Object.keys(counted).length > 0
    readonly property int line: Math.ceil(fontSizes.body * 1.25) + 6

    // A row that nobody sees is not laid out: it gets some room first.
    implicitWidth: isCounting ? Math.max(row.implicitWidth, line) : 0
    implicitHeight: isCounting ? line : 0

    function count() {
        const found = {}
        for (let kind = 0; kind < counts.rowCount(); ++kind) {
            const index = counts.index(kind, 0)
            found[counts.data(index, NotificationStatusModel.TypeRole)]
                = counts.data(index, NotificationStatusModel.CountRole)
        }
        counted = found
    }

    NotificationStatusModel {
        id: counts

        manager: bar.manager
        // Once for all that is said in one turn.
        onModelReset: Qt.callLater(bar.count)
    }
    Row {
        id: row

        spacing: Theme.tight

        Repeater {
            model: [Notification.ErrorMessage, Notification.WarningMessage, Notification.CheckedMessage,
                    Notification.InfoMessage]

            ZTButton {
                required property int modelData
                readonly property int waiting: bar.counted[modelData] ?? 0

                objectName: "NotificationStatusBar-count-" + modelData
                implicitHeight: bar.line
                kind: "flat"
                iconName: notificationStyle.icon(modelData)
                iconInk: notificationStyle.color(modelData)
                iconSide: Theme.scaled(16)
                leftPadding: 6
                rightPadding: 6
                text: waiting
                tip: notificationStyle.name(modelData)
                visible: waiting > 0
                Accessible.name: qsTr("%1: %2").arg(tip).arg(waiting)
                onClicked: if (bar.dialog) bar.dialog.show()
            }
        }
    }
}
