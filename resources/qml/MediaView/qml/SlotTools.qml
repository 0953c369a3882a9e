import QtQuick
import Tessen.Utils 1.0
import ZTCommon 1.0

// What narrows the slots down, and how they are shown.
Row {
    id: tools

    property var panel
    property var pane
    property var view
    readonly property var slotModel: pane.slotModel
    readonly property int buttons: panel.isLast ? 4 : 1

    spacing: Theme.tight

    ZTTextField {
        id: search

        objectName: tools.pane.objectName + "-search"
        width: Math.min(Theme.scaled(190), tools.panel.isAlone ? tools.pane.width / 3 : tools.pane.width - tools.buttons * (Theme.barHeight + tools.spacing) - 2 * Theme.normal)
        placeholderText: qsTr("Search")
        tip: qsTr("Lists the slots whose name, file or number holds the text; Esc clears it")
        Accessible.name: qsTr("Search the collection")
        onTextChanged: slotModel.searchText = text
        Keys.onEscapePressed: text = ""
        Keys.onDownPressed: tools.pane.takeFocus()
        Keys.onReturnPressed: tools.pane.takeFocus()
        Keys.onEnterPressed: tools.pane.takeFocus()
    }
    ZTButton {
        id: filter

        readonly property bool isOn: slotModel.kind >= 0 || slotModel.unusableOnly || slotModel.unusedOnly

        objectName: tools.pane.objectName + "-filter-button"
        kind: isOn ? "" : "flat"
        checkable: false
        iconName: "filter"
        tip: isOn ? qsTr("Only some slots are shown; click to choose which") : qsTr("Show only some of the slots")
        isOpen: filters.item !== null && filters.item.visible
        onClicked: {
            filters.active = true
            filters.item.popup(0, filter.height + 2)
        }

        Rectangle {
            anchors { right: parent.right; top: parent.top; margins: 3 }
            width: 8
            height: 8
            radius: 4
            color: Theme.accent
            visible: filter.isOn
        }
        Loader {
            id: filters

            active: false
            sourceComponent: ZTMenu {
                objectName: tools.pane.objectName + "-filters"
                parent: filter
                onClosed: tools.pane.takeFocus()

                component Choice: ZTMenuItem {
                    property bool isOn: false
                    iconName: isOn ? "check" : ""
                    Accessible.checkable: true
                    Accessible.checked: isOn
                }
                Choice { objectName: "media-filter-all"; text: qsTr("All media"); isOn: slotModel.kind < 0; onTriggered: slotModel.kind = -1 }
                Choice { objectName: "media-filter-video"; text: qsTr("Videos"); isOn: slotModel.kind === Media.VideoFile; onTriggered: slotModel.kind = Media.VideoFile }
                Choice { objectName: "media-filter-audio"; text: qsTr("Sound"); isOn: slotModel.kind === Media.AudioFile; onTriggered: slotModel.kind = Media.AudioFile }
                Choice { objectName: "media-filter-image"; text: qsTr("Stills"); isOn: slotModel.kind === Media.ImageFile; onTriggered: slotModel.kind = Media.ImageFile }
                Choice { objectName: "media-filter-sequence"; text: qsTr("Image sequences"); isOn: slotModel.kind === Media.ImageSequence; onTriggered: slotModel.kind = Media.ImageSequence }
                ZTMenuSeparator {}
                Choice { objectName: "media-filter-unusable"; text: qsTr("Only what cannot be played"); isOn: slotModel.unusableOnly; onTriggered: slotModel.unusableOnly = !slotModel.unusableOnly }
                Choice { objectName: "media-filter-unused"; text: qsTr("Only what no playlist plays"); isOn: slotModel.unusedOnly; onTriggered: slotModel.unusedOnly = !slotModel.unusedOnly }
            }
        }
    }
    ZTButton {
        objectName: tools.pane.objectName + "-table-button"
        visible: tools.panel.isLast
        kind: "flat"
        iconName: mediaActions.isTable ? "media" : "playlist"
        tip: mediaActions.isTable ? qsTr("Show the slots as pictures") : qsTr("Show the slots as a table")
        onClicked: mediaActions.isTable = !mediaActions.isTable
    }
    ZTButton {
        objectName: tools.pane.objectName + "-details-button"
        visible: tools.panel.isLast
        kind: "flat"
        iconName: "info"
        checked: tools.view.hasDetails
        tip: !tools.view.hasDetails ? qsTr("Show what is known of the selected slots")
           : tools.view.isWide ? qsTr("Hide the details") : qsTr("Show the collections again")
        onClicked: tools.view.toggleDetails()
    }
    ZTButton {
        objectName: tools.pane.objectName + "-beside-button"
        visible: tools.panel.isLast && (tools.view.canShowBeside || tools.panel.isAlone)
        enabled: tools.view.canShowBeside && tools.slotModel.isThere
        kind: "flat"
        iconName: "columns"
        tip: tools.view.canShowBeside ? qsTr("Show another collection beside this one")
                                      : qsTr("The window has no room for another collection beside this one")
        onClicked: tools.view.showAnother()
    }
    // For the keys of the list.
    function find() {
        search.forceActiveFocus(Qt.ShortcutFocusReason)
        search.selectAll()
    }
    function clearAll() {
        search.text = ""
        slotModel.kind = -1
        slotModel.unusableOnly = false
        slotModel.unusedOnly = false
    }
    Component.onCompleted: pane.tools = tools
}
