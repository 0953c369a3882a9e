import QtQuick
import QtQuick.Templates as T
import ZTCommon 1.0

// One of the collections that stand side by side: its title, what narrows it down, and its slots.
ShrinkableFrame {
    id: panel

    required property int index
    required property var slotModel
    property var view
    property alias pane: slots
    readonly property bool isAlone: collectionPanes.count === 1
    readonly property bool isCurrent: collectionPanes.current === index
    readonly property bool isShown: index >= view.firstPane && index < view.firstPane + view.paneRoom
    // The buttons that are of all of them stand at the right end.
    readonly property bool isLast: index === Math.min(collectionPanes.count, view.firstPane + view.paneRoom) - 1

    objectName: "media-slots-panel" + (index > 0 ? index + 1 : "")
    visible: isShown
    title: isAlone || !slotModel.isThere ? slots.title
                                         : slotModel.collection + " " + slotModel.name + "  –  " + slots.title
    tools: ZTButton {
        objectName: slots.objectName + "-close-button"
        visible: !panel.isAlone
        kind: "flat"
        iconName: "close"
        tip: qsTr("Show this collection no longer (Ctrl+W)")
        onClicked: collectionPanes.close(panel.index)
    }
    T.SplitView.minimumWidth: Theme.scaled(view.paneWidth) / 2

    Rectangle {
        // Which of them the keys and the list of collections mean.
        parent: panel
        anchors { left: parent.left; right: parent.right; top: parent.top }
        anchors { leftMargin: Theme.panelRadius; rightMargin: Theme.panelRadius }
        height: 2
        color: Theme.accent
        visible: panel.isCurrent && !panel.isAlone
    }
    Item {
        // Below the title, where several have little room each.
        id: strip

        anchors { left: parent.left; right: parent.right; top: parent.top; leftMargin: Theme.normal }
        height: panel.isAlone ? 0 : Theme.barHeight + 2 * Theme.tight

        SlotTools {
            parent: panel.isAlone ? panel.toolPlace : strip
            panel: panel
            pane: slots
            view: panel.view
        }
    }
    SlotPane {
        id: slots

        objectName: "media-slots" + (panel.index > 0 ? panel.index + 1 : "")
        anchors { left: parent.left; right: parent.right; top: strip.bottom; bottom: parent.bottom }
        focus: true
        slotModel: panel.slotModel
        view: panel.view
        panel: panel
    }
}
