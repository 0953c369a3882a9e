import QtQuick
import QtQuick.Templates as T
import ZTCommon 1.0

// The MEDIA tab: the collections on the left, the slots of the chosen one on the right.
ZTQMLWidget {
    id: view

    objectName: "MediaView"

    function selectCollection(number: int) {
        collectionModel.setSelectedCollectionIndex(number)
        slots.takeFocus()
    }

    Rectangle {
        id: banner

        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: visible ? Theme.barHeight + 2 * Theme.tight : 0
        visible: mediaActions.obstacle !== "" && slotModel.collection >= 0
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
        anchors { left: parent.left; right: parent.right; top: banner.bottom; bottom: parent.bottom }
        anchors.topMargin: banner.visible ? Theme.normal : 0
        orientation: Qt.Horizontal

        CollectionPanel {
            objectName: "media-collections-panel"
            T.SplitView.minimumWidth: Theme.scaled(180)
            T.SplitView.maximumWidth: view.width / 2
            T.SplitView.preferredWidth: Math.min(Theme.scaled(240), view.width / 3)
        }
        ShrinkableFrame {
            id: panel

            objectName: "media-slots-panel"
            title: slots.title
            T.SplitView.fillWidth: true
            T.SplitView.minimumWidth: Theme.scaled(300)
            tools: SlotTools { pane: slots }

            SlotPane {
                id: slots

                objectName: "media-slots"
                anchors.fill: parent
                focus: true
            }
        }
    }
}
