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
    title: conflictDesk.isAsking ? qsTr("Transfers: a question")
         : open > 0 ? qsTr("Transfers: %1 to go, %2 %").arg(open).arg(Math.round(operations.totalProgress * 100))
         : failed > 0 ? qsTr("Transfers: %1 failed").arg(failed) : qsTr("Transfers")
    tools: [
        ZTButton {
            id: limit

            objectName: "transfers-limit-button"
            kind: "flat"
            text: fileActions.transferLimit > 0 ? qsTr("Limit: %1 MB/s").arg(fileActions.transferLimit) : qsTr("No limit")
            tip: qsTr("The most that transfers take while program plays; what is on air comes first")
            isOpen: limitMenu.item !== null && limitMenu.item.visible
            onClicked: limitMenu.item ? limitMenu.item.open() : limitMenu.active = true

            Loader {
                id: limitMenu

                active: false
                sourceComponent: LimitMenu {
                    parent: limit
                    y: limit.height
                }
                onLoaded: item.open()
            }
        },
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

    Connections {
        // A question that nobody sees would hold the queue.
        target: conflictDesk

        function onQuestionChanged() {
            if (conflictDesk.isAsking)
                panel.isShrunk = false
        }
    }
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
        anchors.bottomMargin: Math.min(fileActions.coveredHeight, parent.height / 2) // what failed stays in sight
        model: panel.operations
        delegate: TransferRow {}
        activeFocusOnTab: count > 0
        keyNavigationEnabled: true
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Transfers")
        onActiveFocusChanged: if (activeFocus && currentIndex < 0) currentIndex = 0
        Keys.onDeletePressed: if (currentItem) currentItem.end()

        Connections {
            // To what has just begun, and then the list stays where the wheel leaves it.
            property int shown: -1

            target: panel.operations

            function onCountChanged() {
                const row = panel.operations.activeRow()
                if (row >= 0 && row !== shown && !list.activeFocus)
                    list.positionViewAtIndex(row, ListView.Contain)
                shown = row
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
