import QtQuick
import QtQuick.Templates as T
import ZTCommon 1.0

// The collections: one is chosen, and its slots are shown.
ShrinkableFrame {
    id: panel

    title: qsTr("Collections")

    // The next collection that comes is the operator's own.
    property bool choosesAdded: false
    property int chosen: -1
    property int menuNumber: -1 // the collection that the menu is of
    property bool canShowBeside: false

    signal slotsWanted()

    function askNew() {
        const dialog = dialogs.openTextInputDialog(qsTr("New collection"), qsTr("Name"), qsTr("CREATE"))
        dialog.setObjectNames("MediaView-new-collection")
        dialog.valuesConfirmed.connect(function(values) { choosesAdded = commandCenter.appendCollection(values[0]) })
    }
    function askName(number) {
        if (!mediaActions.isEditable || number < 0)
            return
        const name = collectionModel.nameOf(number)
        const collection = mediaActions.follow(number)
        const dialog = dialogs.openRenameDialog(qsTr("Rename collection"), qsTr("New name of “%1”").arg(name),
                                                qsTr("RENAME"), name)
        dialog.setObjectNames("MediaView-rename-collection")
        dialog.valuesConfirmed.connect(function(values) {
            if (collection.isThere(qsTr("Rename collection")))
                commandCenter.renameCollection(collection.number, values[0])
        })
    }
    function duplicate(number) { choosesAdded = commandCenter.copyCollection(number, -1) }
    function askRemove(number) {
        if (!mediaActions.isEditable || number < 0)
            return
        const collection = mediaActions.follow(number)
        const title = () => collection.number < 0 ? qsTr("The collection is gone") : qsTr("Remove collection %1?").arg(collection.number)
        const dialog = dialogs.openConfirmationDialog(
            title(),
            qsTr("“%1” goes with all its slots. Playlists that play them lose their media. It can be undone.").arg(collectionModel.nameOf(number)),
            qsTr("REMOVE"))
        dialog.setObjectNames("MediaView-remove-collection")
        const tell = () => dialog.windowTitle = title()
        collection.numberChanged.connect(tell)
        dialog.finished.connect(() => collection.numberChanged.disconnect(tell))
        dialog.confirmed.connect(function() {
            if (collection.isThere(qsTr("Remove collection")))
                commandCenter.removeCollection(collection.number)
        })
    }
    function step(number, direction) {
        if (mediaActions.isEditable && number >= 0)
            collectionOrder.step(number, direction)
    }
    function showBeside(number) {
        if (canShowBeside && number >= 0)
            collectionPanes.open(number)
    }
    // -1 without a collection.
    function choose(number) {
        chosen = number
        collectionPanes.slotModel.collection = number
        Qt.callLater(showChosen) // once the list has its rows
    }

    Component.onCompleted: {
        const last = collectionPanes.slotModel.collection
        if (last >= 0)
            collectionModel.selectComing(last)
        if (collectionModel.selectedCollectionIndex() >= 0)
            choose(collectionModel.selectedCollectionIndex())
    }

    Connections {
        target: collectionPanes

        function onCurrentChanged() { collectionModel.setSelectedCollectionIndex(collectionPanes.slotModel.collection) }
    }
    Connections {
        target: collectionModel

        function onSelectionChanged(number, row) { panel.choose(number) }
        function onRowsInserted(parent, first, last) {
            if (!panel.choosesAdded)
                return
            panel.choosesAdded = false
            collectionModel.setSelectedCollectionIndex(collectionModel.numberAt(first))
        }
    }

    tools: [
        ZTButton {
            objectName: "MediaView-add-collection-button"
            kind: "flat"
            iconName: "plus"
            tip: qsTr("New collection")
            enabled: mediaActions.isEditable
            onClicked: panel.askNew()
        },
        ZTButton {
            id: more

            objectName: "MediaView-collection-menu-button"
            kind: "flat"
            iconName: "more"
            tip: qsTr("What can be done with this collection")
            enabled: mediaActions.isEditable && panel.chosen >= 0
            isOpen: menu.item !== null && menu.item.visible
            onClicked: panel.openMenu(panel.chosen, more.mapToItem(panel, 0, more.height + 2))
        }
    ]
    function openMenu(number, at) {
        menuNumber = number
        menu.active = true
        menu.item.popup(at.x, at.y)
    }

    ZTList {
        id: list

        objectName: "media-collections"
        anchors.fill: parent
        activeFocusOnTab: true
        model: collectionModel
        currentRow: (panel.chosen, count, collectionModel.selectedRow())
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Collections")
        delegate: Item {
            id: row

            required property int index
            required property int collectionNumber
            required property string editText
            readonly property bool isChosen: collectionNumber === panel.chosen
            readonly property bool hasMenu: menu.item !== null && menu.item.visible && collectionNumber === panel.menuNumber
            readonly property bool isBeside: !isChosen && (collectionPanes.revision, collectionPanes.shows(collectionNumber))
            readonly property string text: editText
            readonly property bool isCut: label.truncated

            objectName: "media-collection-row" + index
            width: ListView.view ? ListView.view.width : 0
            height: Theme.rowHeight
            opacity: collectionNumber === mouse.dragged ? 0.5 : 1
            Accessible.role: Accessible.ListItem
            Accessible.name: qsTr("Collection %1, %2").arg(collectionNumber).arg(editText)
            Accessible.selectable: true
            Accessible.selected: isChosen
            Accessible.focused: isChosen && list.activeFocus

            Rectangle {
                anchors { fill: parent; leftMargin: Theme.tight; rightMargin: fontSizes.bar }
                radius: Theme.radius
                color: row.isChosen ? (list.activeFocus ? Theme.accentVeil : Theme.hoverStrong)
                     : mouse.rowUnder === row.index ? Theme.hover : "transparent"
                border.width: 1
                border.color: (row.isChosen && list.activeFocus) || row.hasMenu ? Theme.focus : "transparent"
            }
            ZTIcon {
                // It stands beside the chosen one.
                id: besideMark

                anchors { right: parent.right; rightMargin: fontSizes.bar + Theme.normal; verticalCenter: parent.verticalCenter }
                name: "columns"
                color: Theme.faint
                visible: row.isBeside
            }
            ZTLabel {
                id: number

                x: Theme.normal
                width: Theme.scaled(32)
                height: parent.height
                horizontalAlignment: Text.AlignRight
                text: row.collectionNumber
                color: Theme.dim
                Accessible.ignored: true
            }
            ZTLabel {
                id: label

                anchors { left: number.right; right: row.isBeside ? besideMark.left : parent.right }
                anchors { leftMargin: Theme.normal; rightMargin: row.isBeside ? Theme.tight : fontSizes.bar + Theme.tight }
                height: parent.height
                text: row.editText
                color: row.isChosen ? Theme.strong : Theme.text
                Accessible.ignored: true
            }
            // Held over a collection, a drag opens it: its slots take the drop.
            DropArea {
                id: hold

                anchors.fill: parent

                Timer {
                    running: hold.containsDrag
                    interval: 500
                    onTriggered: collectionModel.setSelectedCollectionIndex(row.collectionNumber)
                }
            }
        }
        Keys.onShortcutOverride: (event) => event.accepted = [Qt.Key_Up, Qt.Key_Down, Qt.Key_Right, Qt.Key_Return, Qt.Key_Enter, Qt.Key_Home, Qt.Key_End, Qt.Key_Menu].indexOf(event.key) >= 0
                                                            || (event.key === Qt.Key_Escape && mouse.dragged >= 0)
                                                            || ["rename", "delete", "move_entries_up", "move_entries_down"].indexOf(mediaActions.actionOf(event.key, event.modifiers)) >= 0
        Keys.onPressed: (event) => {
            const row = collectionModel.selectedRow()
            const action = mediaActions.actionOf(event.key, event.modifiers)
            event.accepted = true
            if (action !== "" && event.isAutoRepeat) return // held down, none of them is meant twice
            if (action === "move_entries_up") panel.step(panel.chosen, -1)
            else if (action === "move_entries_down") panel.step(panel.chosen, 1)
            else if (event.key === Qt.Key_Escape && mouse.dragged >= 0) mouse.stop()
            else if (event.modifiers & Qt.ControlModifier && panel.isEnter(event)) panel.showBeside(panel.chosen)
            else if (action === "rename") panel.askName(panel.chosen)
            else if (action === "delete") panel.askRemove(panel.chosen)
            else if (event.key === Qt.Key_Right || panel.isEnter(event)) panel.slotsWanted()
            else if (event.key === Qt.Key_Up) panel.goTo(Math.max(0, row - 1))
            else if (event.key === Qt.Key_Down) panel.goTo(Math.min(list.count - 1, row + 1))
            else if (event.key === Qt.Key_Home) panel.goTo(0)
            else if (event.key === Qt.Key_End) panel.goTo(list.count - 1)
            else if (event.key === Qt.Key_Menu) panel.openMenu(panel.chosen, list.mapToItem(panel, 20, 20))
            else event.accepted = false
        }
    }
    CollectionMouse {
        id: mouse

        anchors { fill: parent; rightMargin: fontSizes.bar }
        list: list
        panel: panel
    }
    function isEnter(event) { return event.key === Qt.Key_Return || event.key === Qt.Key_Enter }
    function showChosen() {
        const row = collectionModel.selectedRow()
        if (row >= 0 && row < list.count)
            list.positionViewAtIndex(row, ListView.Contain)
    }
    function goTo(row) { collectionModel.setSelectedCollectionIndex(collectionModel.numberAt(row)) }

    ZTEmptyState {
        anchors.centerIn: parent
        width: Math.min(parent.width - 2 * Theme.loose, Theme.scaled(320))
        visible: list.count === 0
        iconName: "folder"
        title: mediaActions.obstacle !== "" ? "" : qsTr("No collections")
        text: mediaActions.obstacle !== "" ? mediaActions.obstacle : qsTr("Add one with the + button above.")
    }
    Loader {
        id: menu

        active: false
        sourceComponent: ZTMenu {
            objectName: "MediaView-collection-menu"
            parent: panel
            onClosed: list.forceActiveFocus()

            ZTMenuItem {
                objectName: "MediaView-collection-menu-rename"
                text: qsTr("Rename collection ...")
                iconName: "edit"
                keys: mediaActions.keysOf("rename")
                enabled: mediaActions.isEditable
                onTriggered: panel.askName(panel.menuNumber)
            }
            ZTMenuItem {
                objectName: "MediaView-collection-menu-copy"
                text: qsTr("Duplicate collection")
                iconName: "copy"
                enabled: mediaActions.isEditable
                onTriggered: panel.duplicate(panel.menuNumber)
            }
            ZTMenuItem {
                objectName: "MediaView-collection-menu-beside"
                text: qsTr("Show beside")
                iconName: "columns"
                keys: qsTr("Ctrl+Enter")
                enabled: panel.canShowBeside
                onTriggered: Qt.callLater(panel.showBeside, panel.menuNumber)
            }
            ZTMenuSeparator {}
            ZTMenuItem {
                objectName: "MediaView-collection-menu-up"
                text: qsTr("Move up")
                iconName: "move_up"
                keys: mediaActions.keysOf("move_entries_up")
                enabled: mediaActions.isEditable
                onTriggered: panel.step(panel.menuNumber, -1)
            }
            ZTMenuItem {
                objectName: "MediaView-collection-menu-down"
                text: qsTr("Move down")
                iconName: "move_down"
                keys: mediaActions.keysOf("move_entries_down")
                enabled: mediaActions.isEditable
                onTriggered: panel.step(panel.menuNumber, 1)
            }
            ZTMenuSeparator {}
            ZTMenuItem {
                objectName: "MediaView-collection-menu-remove"
                text: qsTr("Remove collection ...")
                iconName: "trash"
                keys: mediaActions.keysOf("delete")
                enabled: mediaActions.isEditable
                onTriggered: panel.askRemove(panel.menuNumber)
            }
        }
    }
}
