import QtQuick
import ZTCommon 1.0

// What is on its way between the sides, what waits and what is over.
ShrinkableFrame {
    id: panel

    readonly property var operations: session.operationsModel
    readonly property int open: operations ? operations.openCount : 0
    readonly property int failed: operations ? operations.failedCount : 0

    objectName: "transfers-panel"
    canShrink: true
    iconName: "transfer"
    title: open > 0 ? qsTr("Transfers: %1 to go, %2 %").arg(open).arg(Math.round(operations.totalProgress * 100))
         : failed > 0 ? qsTr("Transfers: %1 failed").arg(failed) : qsTr("Transfers")
    tools: [
        ZTButton {
            objectName: "transfers-clear-button"
            kind: "flat"
            text: qsTr("Clear finished")
            tip: qsTr("Take what is over out of the list")
            enabled: panel.operations !== null && panel.operations.count > panel.open
            onClicked: panel.operations.clearFinished()
        },
        ZTButton {
            objectName: "transfers-stop-button"
            kind: "flat"
            text: qsTr("Stop all")
            tip: qsTr("Stop what runs, and what waits before it begins")
            enabled: panel.open > 0
            onClicked: panel.operations.cancelAll()
        }
    ]

    ConflictBar {
        id: conflict

        anchors { left: parent.left; right: parent.right; top: parent.top }
        anchors { leftMargin: Theme.normal; rightMargin: Theme.normal }
        height: visible ? implicitHeight : 0
    }
    ZTList {
        id: list

        objectName: "transfers-list"
        anchors { left: parent.left; right: parent.right; top: conflict.bottom; bottom: parent.bottom }
        model: panel.operations
        delegate: TransferRow {}
        activeFocusOnTab: count > 0
        keyNavigationEnabled: true
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Transfers")
        onActiveFocusChanged: if (activeFocus && currentIndex < 0) currentIndex = 0
        Keys.onDeletePressed: if (currentItem) currentItem.end()

        Connections {
            target: panel.operations

            function onCountChanged() {
                const row = panel.operations.activeRow()
                if (row >= 0 && !list.activeFocus)
                    list.positionViewAtIndex(row, ListView.Contain)
            }
        }
    }
    ZTEmptyState {
        anchors.centerIn: list
        width: parent.width - 2 * Theme.loose
        visible: list.count === 0
        text: qsTr("Nothing is on its way. What you copy from one side to the other shows here.")
    }
}
