import QtQuick
import QtQuick.Templates as T
import ZTCommon 1.0

// The MEDIA tab: the collections on the left, the slots of the chosen one on the right.
ZTQMLWidget {
    id: view

    objectName: "MediaView"

    // Where not all three stand side by side, the details take the place of the collections while they are asked for.
    readonly property bool isWide: width >= Theme.scaled(860)
    property bool narrowDetails: false
    readonly property bool hasDetails: isWide ? mediaActions.hasDetails : narrowDetails

    function toggleDetails() {
        if (isWide)
            mediaActions.hasDetails = !mediaActions.hasDetails
        else
            narrowDetails = !narrowDetails
    }
    function pointAtFile(file) {
        chooser.active = true
        chooser.item.begin(file)
    }

    function selectCollection(number: int) {
        collectionModel.setSelectedCollectionIndex(number)
        pane.takeFocus()
    }
    // What the keys mean of those that stand side by side.
    readonly property var pane: (panes.count, panes.itemAt(collectionPanes.current) ? panes.itemAt(collectionPanes.current).pane : null)
    readonly property int paneRoom: Math.max(1, Math.floor((columns.width + Theme.normal) / (Theme.scaled(paneWidth) + Theme.normal)))
    readonly property int firstPane: Math.max(0, Math.min(collectionPanes.current, collectionPanes.count - paneRoom))
    readonly property bool canShowBeside: collectionPanes.count < paneRoom
    readonly property int paneWidth: 300
    function stepPane(direction) {
        collectionPanes.current = (collectionPanes.current + direction + collectionPanes.count) % collectionPanes.count
        pane.takeFocus()
    }
    function closePane() {
        collectionPanes.close(collectionPanes.current)
        pane.takeFocus()
    }
    // The next collection that is not shown yet.
    function showAnother() {
        const rows = collectionModel.rowCount()
        const from = collectionModel.selectedRow()
        for (let step = 1; step <= rows; ++step) {
            const number = collectionModel.numberAt((from + step) % rows)
            if (step === rows || !collectionPanes.shows(number))
                return collectionPanes.open(number)
        }
    }

    Rectangle {
        id: banner

        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: visible ? Theme.barHeight + 2 * Theme.tight : 0
        visible: mediaActions.obstacle !== "" && view.pane !== null && view.pane.slotModel.isThere
        color: Theme.panel
        radius: Theme.panelRadius

        ZTIcon {
            id: bannerIcon

            anchors { left: parent.left; leftMargin: Theme.normal; verticalCenter: parent.verticalCenter }
            name: "unlinked"
            color: Theme.notice
        }
        ZTLabel {
            objectName: "MediaView-obstacle"
            anchors { left: bannerIcon.right; right: connectButton.left; verticalCenter: parent.verticalCenter }
            anchors { leftMargin: Theme.normal; rightMargin: Theme.normal }
            text: mediaActions.obstacle
        }
        ZTButton {
            id: connectButton

            objectName: "MediaView-connect-button"
            anchors { right: parent.right; rightMargin: Theme.normal; verticalCenter: parent.verticalCenter }
            width: visible ? implicitWidth : 0
            visible: !mediaActions.isConnected
            iconName: "linked"
            text: qsTr("Connect to server")
            tip: qsTr("Choose a server to connect to")
            onClicked: mediaActions.connectRequested()
        }
    }
    ZTSplitView {
        anchors { left: parent.left; right: parent.right; top: banner.bottom; bottom: pending.top }
        anchors { topMargin: banner.visible ? Theme.normal : 0; bottomMargin: pending.visible ? Theme.normal : 0 }
        orientation: Qt.Horizontal

        CollectionPanel {
            canShowBeside: view.canShowBeside
            onSlotsWanted: view.pane.takeFocus()
            objectName: "media-collections-panel"
            visible: view.isWide || !view.narrowDetails
            T.SplitView.minimumWidth: Theme.scaled(180)
            T.SplitView.maximumWidth: view.width / 2
            T.SplitView.preferredWidth: Math.min(Theme.scaled(240), view.width / 3)
        }
        ZTSplitView {
            id: columns

            property var view: view
            orientation: Qt.Horizontal
            T.SplitView.fillWidth: true
            T.SplitView.minimumWidth: Theme.scaled(view.paneWidth)

            Repeater {
                id: panes

                model: collectionPanes
                delegate: SlotPanel {
                    view: columns.view
                    T.SplitView.preferredWidth: columns.width / Math.min(view.paneRoom, collectionPanes.count)
                }
            }
        }
        DetailsPanel {
            objectName: "media-details-panel"
            visible: view.hasDetails
            pane: view.pane
            T.SplitView.minimumWidth: Theme.scaled(180)
            T.SplitView.maximumWidth: view.width / 2
            T.SplitView.preferredWidth: Math.min(Theme.scaled(260), view.width / 3)
            onPointRequested: (file) => view.pointAtFile(file)
        }
    }
    Rectangle {
        id: pending

        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: visible ? Theme.barHeight + 2 * Theme.tight : 0
        visible: mediaActions.pendingDrop !== ""
        color: Theme.panel
        radius: Theme.panelRadius

        ZTLabel {
            objectName: "MediaView-pending"
            anchors { left: parent.left; right: giveUpButton.left; verticalCenter: parent.verticalCenter }
            anchors { leftMargin: Theme.normal; rightMargin: Theme.normal }
            text: mediaActions.pendingDrop
            elide: Text.ElideRight
        }
        ZTButton {
            id: giveUpButton

            objectName: "MediaView-pending-cancel-button"
            anchors { right: parent.right; rightMargin: Theme.tight; verticalCenter: parent.verticalCenter }
            iconName: "close"
            tip: qsTr("Give up this drop: nothing of it goes into slots")
            onClicked: mediaActions.givePendingDropUp()
        }
    }
    Loader {
        id: chooser

        active: false
        sourceComponent: FileChooser { onClosed: view.pane.takeFocus() }
    }
}
