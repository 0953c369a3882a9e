import QtQuick
import QtQuick.Templates as T
import Tessen.Models 1.0
import ZTCommon 1.0

// The slots of one collection as pictures or as a table, and what is done with them.
FocusScope {
    id: pane

    property var slotModel: null
    property var view: null
    property var panel: null
    property var tools: null
    property alias selection: selection
    readonly property bool hasKeys: grid.activeFocus
    readonly property bool isTable: mediaActions.isTable
    readonly property bool isFiltered: slotModel.searchText !== "" || slotModel.kind >= 0 || slotModel.unusableOnly
                                       || slotModel.unusedOnly
    readonly property string title: !slotModel.isThere ? qsTr("Slots")
                                  : selection.selectedCount > 1
                                    ? qsTr("%1 of %2 slots selected").arg(selection.selectedCount).arg(slotModel.count)
                                  : isFiltered ? qsTr("%1 of %2 slots").arg(slotModel.count).arg(slotModel.total)
                                  : slotModel.total === 1 ? qsTr("1 slot") : qsTr("%1 slots").arg(slotModel.total)
    readonly property int columns: isTable ? 1 : Math.max(1, Math.floor(grid.room / Theme.scaled(184)))
    property int renamingSlot: -1
    // While a drag is over the slots: the one it points at, and what a drop there would do.
    property int target: -1
    property var aimed: null

    onActiveFocusChanged: if (activeFocus) collectionPanes.current = panel.index
    // What of a range a drop takes; how far it goes tells only once it is read.
    function numbersOf(first, last) {
        return aimed !== null && aimed.isExact === false ? qsTr("from %1").arg(first)
             : first === last ? String(first) : first + " – " + last
    }
    function takeFocus() { grid.forceActiveFocus() }
    function selectedSlots() { return slotModel.slotsAt(selection.rows()) }
    // A place has nothing to be played or named.
    readonly property bool isOnSlot: (selection.revision, slotModel.isSlotAt(selection.currentRow))
    function cueCurrent() {
        if (isOnSlot)
            mediaActions.cue(slotModel.collection, slotModel.slotAt(selection.currentRow))
    }
    function startRename() {
        if (mediaActions.isEditable && isOnSlot)
            renamingSlot = slotModel.slotAt(selection.currentRow)
    }
    function finishRename(name) {
        const slot = renamingSlot
        if (slot < 0)
            return
        renamingSlot = -1
        takeFocus()
        if (name.trim().length > 0)
            mediaActions.rename(slotModel.collection, slot, name)
    }
    function clearSelected() { mediaActions.clear(slotModel.collection, selectedSlots()) }
    function copySelected(isCut) {
        if (selection.selectedCount > 0)
            say(mediaActions.copy(slotModel.collection, selectedSlots(), isCut))
    }
    function paste() {
        if (mediaActions.isEditable && slotModel.isThere)
            mediaActions.paste(slotModel.collection, slotModel.numberBefore(selection.currentRow >= 0 ? selection.currentRow : grid.count - 1))
    }
    function askMove() {
        if (mediaActions.isEditable && selection.selectedCount > 0)
            mediaActions.askMove(slotModel.collection, selectedSlots())
    }
    readonly property bool canPoint: mediaActions.isEditable && String(slotDetails.shown.file) !== ""
    function point() {
        if (canPoint)
            view.pointAtFile(slotDetails.shown.file)
    }
    function askPlaylist(at) {
        if (!mediaActions.isEditable || selection.selectedCount === 0)
            return
        playlists.active = true
        playlists.item.begin(at)
    }
    // What was done, where nothing that is shown tells of it.
    function say(text) {
        said.text = text
        saidTimer.restart()
    }
    function step(to, modifiers) {
        if (grid.count === 0)
            return
        const row = Math.max(0, Math.min(grid.count - 1, to))
        if ((modifiers & Qt.ControlModifier) && !(modifiers & Qt.ShiftModifier))
            selection.moveTo(row)
        else
            selection.pick(row, modifiers & Qt.ShiftModifier)
        grid.positionViewAtIndex(row, GridView.Contain)
    }
    property point menuPlace
    function openMenu(at) {
        menuPlace = at
        menu.active = true
        menu.item.popup(at.x, at.y)
    }

    ZTSelectionModel {
        id: selection

        rowModel: pane.slotModel
    }
    readonly property ZTSpokenRow spoken: ZTSpokenRow { view: grid; row: selection.currentRow }
    Connections {
        target: pane.slotModel

        function onCollectionChanged() {
            pane.renamingSlot = -1
            selection.clear()
            grid.positionViewAtBeginning()
        }
    }
    Timer {
        id: typed

        property string text

        interval: 1000
        onTriggered: text = ""
    }
    GridView {
        id: grid

        readonly property int room: width - fontSizes.bar

        objectName: pane.objectName + "-grid"
        anchors.fill: parent
        anchors.leftMargin: Theme.tight
        opacity: mediaActions.isLive ? 1 : 0.4
        focus: true
        activeFocusOnTab: true
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false
        currentIndex: -1
        pixelAligned: true
        T.ScrollBar.vertical: ZTScrollBar {}
        cellWidth: pane.isTable ? width : Math.floor(room / pane.columns)
        cellHeight: pane.isTable ? Math.max(Theme.rowHeight, Theme.scaled(36))
                                 : Math.round((cellWidth - 4 * Theme.tight) * 9 / 16) + 2 * Theme.rowHeight + Theme.normal
        cacheBuffer: 0 // each slot that is not in view would be a picture all the same
        model: pane.slotModel
        delegate: SlotItem { pane: grid.parent }
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Slots")
        onActiveFocusChanged: if (activeFocus && selection.currentRow < 0 && count > 0) selection.moveTo(0)
        Keys.onShortcutOverride: (event) => event.accepted = keys.isOurs(event)
        Keys.onPressed: (event) => event.accepted = keys.press(event)

        SlotKeys {
            id: keys

            pane: grid.parent
            grid: grid
            typed: typed
        }
    }
    MouseArea {
        // The empty part of the view; the view itself would keep a press there.
        parent: grid.contentItem
        width: grid.width
        height: Math.max(grid.height, grid.contentHeight)
        z: -1
        onPressed: {
            pane.takeFocus()
            selection.clearSelection()
        }
    }
    SlotDropArea {
        id: drops

        anchors.fill: parent
        pane: pane
        grid: grid
    }
    Timer {
        id: saidTimer

        interval: 5000
        onTriggered: said.text = ""
    }
    Rectangle {
        objectName: pane.objectName + "-said"
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; margins: Theme.tight }
        height: said.implicitHeight + 2 * Theme.normal
        visible: said.text !== "" && pane.aimed === null
        color: Theme.background
        radius: Theme.radius
        border.width: 1
        border.color: Theme.good

        ZTLabel {
            id: said

            objectName: pane.objectName + "-said-text"
            anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; margins: Theme.normal }
            color: Theme.strong
            wrapMode: Text.WordWrap
        }
    }
    Column {
        anchors.centerIn: parent
        width: Math.min(parent.width - 2 * Theme.loose, Theme.scaled(380))
        spacing: Theme.loose
        visible: grid.count === 0 && !drops.containsDrag

        ZTEmptyState {
            width: parent.width
            iconName: !slotModel.isThere ? (mediaActions.isConnected ? "media" : "unlinked")
                    : slotModel.total > 0 ? "search" : "import"
            title: !slotModel.isThere ? (mediaActions.obstacle !== "" ? "" : qsTr("No collection"))
                 : slotModel.total > 0 ? qsTr("No slot matches") : qsTr("This collection is empty")
            text: !slotModel.isThere ? (mediaActions.obstacle !== "" ? mediaActions.obstacle
                                      : slotModel.collection < 0 ? qsTr("Add one with the + button on the left.")
                                      : qsTr("Collection %1 is not in the library.").arg(slotModel.collection))
                : slotModel.total > 0 ? qsTr("%1 slots are left out by the search or the filters.").arg(slotModel.total)
                                      : qsTr("Drop files, folders or slots here.")
        }
        ZTButton {
            objectName: pane.objectName + "-show-all-button"
            anchors.horizontalCenter: parent.horizontalCenter
            visible: slotModel.isThere && slotModel.total > 0
            text: qsTr("Show all slots")
            tip: qsTr("Takes the search and the filters away")
            onClicked: pane.tools.clearAll()
        }
        ZTButton {
            objectName: pane.objectName + "-connect-button"
            anchors.horizontalCenter: parent.horizontalCenter
            visible: !slotModel.isThere && !mediaActions.isConnected
            kind: "accent"
            iconName: "linked"
            text: qsTr("Connect to server")
            tip: qsTr("Choose a server to connect to")
            onClicked: mediaActions.connectRequested()
        }
    }
    Loader {
        id: menu

        active: false
        sourceComponent: ZTMenu {
            objectName: pane.objectName + "-menu"
            parent: pane
            onClosed: if (pane.renamingSlot < 0) pane.takeFocus()

            ZTMenuItem {
                objectName: pane.objectName + "-menu-cue"
                text: qsTr("Play on preview")
                iconName: "mc_play"
                keys: mediaActions.keysOf("cue")
                enabled: mediaActions.isLive && pane.isOnSlot
                onTriggered: pane.cueCurrent()
            }
            ZTMenuItem {
                objectName: pane.objectName + "-menu-playlist"
                text: qsTr("Add to a playlist ...")
                iconName: "insert_end"
                keys: mediaActions.keysOf("insert_media")
                enabled: mediaActions.isEditable && selection.selectedCount > 0
                onTriggered: Qt.callLater(pane.askPlaylist, pane.menuPlace)
            }
            ZTMenuSeparator {}
            ZTMenuItem {
                objectName: pane.objectName + "-menu-cut"
                text: qsTr("Cut")
                keys: mediaActions.keysOf("cut")
                enabled: mediaActions.isEditable && selection.selectedCount > 0
                onTriggered: pane.copySelected(true)
            }
            ZTMenuItem {
                objectName: pane.objectName + "-menu-copy"
                text: qsTr("Copy")
                iconName: "copy"
                keys: mediaActions.keysOf("copy")
                enabled: selection.selectedCount > 0
                onTriggered: pane.copySelected(false)
            }
            ZTMenuItem {
                objectName: pane.objectName + "-menu-paste"
                text: qsTr("Paste")
                iconName: "paste"
                keys: mediaActions.keysOf("paste")
                enabled: mediaActions.isEditable
                onTriggered: pane.paste()
            }
            ZTMenuItem {
                objectName: pane.objectName + "-menu-move"
                text: qsTr("Move to ...")
                keys: mediaActions.keysOf("move_slots")
                enabled: mediaActions.isEditable && selection.selectedCount > 0
                onTriggered: Qt.callLater(pane.askMove)
            }
            ZTMenuSeparator {}
            ZTMenuItem {
                objectName: pane.objectName + "-menu-rename"
                text: qsTr("Rename")
                iconName: "edit"
                keys: mediaActions.keysOf("rename")
                enabled: mediaActions.isEditable && pane.isOnSlot
                onTriggered: Qt.callLater(pane.startRename) // once the menu has given the keys back
            }
            ZTMenuItem {
                objectName: pane.objectName + "-menu-point"
                text: qsTr("Another file ...")
                iconName: "replace_media"
                enabled: pane.canPoint
                onTriggered: Qt.callLater(pane.point)
            }
            ZTMenuItem {
                objectName: pane.objectName + "-menu-clear"
                text: qsTr("Clear")
                iconName: "trash"
                keys: mediaActions.keysOf("delete")
                enabled: mediaActions.isEditable && selection.selectedCount > 0
                onTriggered: pane.clearSelected()
            }
        }
    }
    Loader {
        id: playlists

        active: false
        sourceComponent: PlaylistPopup {
            parent: pane
            pane: grid.parent
        }
    }
}
