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
    property string chosenName

    function askNew() {
        const dialog = dialogs.openTextInputDialog(qsTr("New collection"), qsTr("Name"), qsTr("CREATE"))
        dialog.setObjectNames("MediaView-new-collection")
        dialog.valuesConfirmed.connect(function(values) { choosesAdded = commandCenter.appendCollection(values[0]) })
    }
    function askName() {
        if (!mediaActions.isEditable || chosen < 0)
            return
        const number = chosen
        const dialog = dialogs.openRenameDialog(qsTr("Rename collection"), qsTr("New name of “%1”").arg(chosenName),
                                                qsTr("RENAME"), chosenName)
        dialog.setObjectNames("MediaView-rename-collection")
        dialog.valuesConfirmed.connect(function(values) { commandCenter.renameCollection(number, values[0]) })
    }
    function duplicate() { choosesAdded = commandCenter.copyCollection(chosen, -1) }
    function askRemove() {
        if (!mediaActions.isEditable || chosen < 0)
            return
        const number = chosen
        const dialog = dialogs.openConfirmationDialog(
            qsTr("Remove collection %1?").arg(number),
            qsTr("“%1” goes with all its slots. Playlists that play them lose their media. It can be undone.").arg(chosenName),
            qsTr("REMOVE"))
        dialog.setObjectNames("MediaView-remove-collection")
        dialog.confirmed.connect(function() { commandCenter.removeCollection(number) })
    }
    // -1 without a collection.
    function choose(number) {
        chosen = number
        chosenName = ""
        slotModel.collection = number
        if (number >= 0)
            mediaActions.lastCollection = number
        Qt.callLater(showChosen) // once the list has its rows
    }

    Component.onCompleted: {
        const last = mediaActions.lastCollection
        if (last >= 0)
            collectionModel.setSelectedCollectionIndex(last)
        choose(collectionModel.selectedCollectionIndex())
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
            onClicked: panel.openMenu(more.mapToItem(panel, 0, more.height + 2))
        }
    ]
    function openMenu(at) {
        menu.active = true
        menu.item.popup(at.x, at.y)
    }

    ZTList {
        id: list

        objectName: "media-collections"
        anchors.fill: parent
        activeFocusOnTab: true
        model: collectionModel
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Collections")
        delegate: Item {
            id: row

            required property int index
            required property int collectionNumber
            required property string editText
            readonly property bool isChosen: collectionNumber === panel.chosen
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
            onIsChosenChanged: tell()
            onEditTextChanged: tell()
            Component.onCompleted: tell()
            function tell() {
                if (!isChosen)
                    return
                panel.chosenName = editText
            }

            Rectangle {
                anchors { fill: parent; leftMargin: Theme.tight; rightMargin: fontSizes.bar }
                radius: Theme.radius
                color: row.isChosen ? (list.activeFocus ? Theme.accentVeil : Theme.hoverStrong)
                     : mouse.rowUnder === row.index ? Theme.hover : "transparent"
                border.width: 1
                border.color: row.isChosen && list.activeFocus ? Theme.focus : "transparent"
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

                anchors { left: number.right; right: parent.right; leftMargin: Theme.normal; rightMargin: fontSizes.bar + Theme.tight }
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
        Keys.onShortcutOverride: (event) => event.accepted = [Qt.Key_Up, Qt.Key_Down, Qt.Key_Home, Qt.Key_End, Qt.Key_Menu].indexOf(event.key) >= 0
                                                            || (event.key === Qt.Key_Escape && mouse.dragged >= 0)
                                                            || ["rename", "delete"].indexOf(mediaActions.actionOf(event.key, event.modifiers)) >= 0
        Keys.onPressed: (event) => {
            const row = collectionModel.selectedRow()
            const action = mediaActions.actionOf(event.key, event.modifiers)
            const isMove = (event.modifiers & Qt.AltModifier) && (event.key === Qt.Key_Up || event.key === Qt.Key_Down)
            event.accepted = true
            if (isMove) { if (!event.isAutoRepeat) panel.step(event.key === Qt.Key_Up ? -1 : 1) }
            else if (event.key === Qt.Key_Escape && mouse.dragged >= 0) mouse.stop()
            else if (action === "rename") panel.askName()
            else if (action === "delete") panel.askRemove()
            else if (event.key === Qt.Key_Up) panel.goTo(Math.max(0, row - 1))
            else if (event.key === Qt.Key_Down) panel.goTo(Math.min(list.count - 1, row + 1))
            else if (event.key === Qt.Key_Home) panel.goTo(0)
            else if (event.key === Qt.Key_End) panel.goTo(list.count - 1)
            else if (event.key === Qt.Key_Menu) panel.openMenu(list.mapToItem(panel, 20, 20))
            else event.accepted = false
        }
    }
    CollectionMouse {
        id: mouse

        anchors { fill: parent; rightMargin: fontSizes.bar }
        list: list
        panel: panel
    }
    function step(direction) {
        if (mediaActions.isEditable && chosen >= 0)
            collectionOrder.step(chosen, direction)
    }
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
                onTriggered: panel.askName()
            }
            ZTMenuItem {
                objectName: "MediaView-collection-menu-copy"
                text: qsTr("Duplicate collection")
                iconName: "copy"
                enabled: mediaActions.isEditable
                onTriggered: panel.duplicate()
            }
            ZTMenuItem {
                objectName: "MediaView-collection-menu-up"
                text: qsTr("Move up")
                keys: "Alt+Up"
                enabled: mediaActions.isEditable
                onTriggered: panel.step(-1)
            }
            ZTMenuItem {
                objectName: "MediaView-collection-menu-down"
                text: qsTr("Move down")
                keys: "Alt+Down"
                enabled: mediaActions.isEditable
                onTriggered: panel.step(1)
            }
            ZTMenuSeparator {}
            ZTMenuItem {
                objectName: "MediaView-collection-menu-remove"
                text: qsTr("Remove collection ...")
                iconName: "trash"
                keys: mediaActions.keysOf("delete")
                enabled: mediaActions.isEditable
                onTriggered: panel.askRemove()
            }
        }
    }
}
