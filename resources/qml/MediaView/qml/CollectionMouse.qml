import QtQuick
import ZTCommon 1.0

// The mouse over the list of collections: it chooses one, and drags it elsewhere in their order. One area for all rows,
// since the row that is dragged may scroll out of the list.
MouseArea {
    id: mouse

    property var list
    property var panel
    readonly property int rowUnder: containsMouse && dragged < 0 ? list.indexAt(1, mouseY + list.contentY) : -1
    // The number of the collection that is on its way; -1 for none.
    property int dragged: -1
    property int gap: -1 // the row in front of which it would go
    property var aimed: null
    property point from
    property int held: -1 // what was pressed on
    property var tipped: null

    acceptedButtons: Qt.LeftButton | Qt.RightButton
    hoverEnabled: true
    preventStealing: true
    enabled: list.count > 0

    function before() { return gap < list.count ? collectionModel.numberAt(gap) : -1 }
    // It takes the place of the row that it is held over.
    function aim() {
        const row = Math.max(0, Math.min(list.count - 1, Math.floor((mouseY + list.contentY) / Theme.rowHeight)))
        gap = collectionModel.numberAt(row) > dragged ? row + 1 : row
        aimed = collectionOrder.aim(dragged, before())
    }
    function stop() {
        dragged = -1
        gap = -1
        aimed = null
        held = -1
    }

    onRowUnderChanged: {
        const row = list.itemAtIndex(rowUnder)
        if (tipped)
            toolTips.hide(tipped)
        tipped = row && row.isCut ? row : null
        if (tipped)
            toolTips.show(tipped, tipped.text)
    }
    onPressed: (event) => {
        const number = collectionModel.numberAt(list.indexAt(1, event.y + list.contentY))
        stop()
        list.forceActiveFocus()
        if (number < 0)
            return
        if (event.button === Qt.RightButton) {
            if (mediaActions.isEditable)
                panel.openMenu(number, mapToItem(panel, event.x, event.y))
        } else if (event.modifiers & Qt.ControlModifier) {
            panel.showBeside(number)
        } else {
            collectionModel.setSelectedCollectionIndex(number)
            from = Qt.point(event.x, event.y)
            held = number
        }
    }
    onPositionChanged: (event) => {
        if (dragged < 0 && held >= 0 && (event.buttons & Qt.LeftButton) && mediaActions.isEditable
            && Math.abs(event.x - from.x) + Math.abs(event.y - from.y) > 10)
            dragged = held
        if (dragged >= 0)
            aim()
    }
    onReleased: {
        if (dragged >= 0) {
            aim()
            if (aimed.text !== "")
                collectionOrder.move(dragged, before())
        }
        stop()
    }
    onCanceled: stop()

    Connections {
        target: mediaActions

        function onLibraryChanged() {
            if (!mediaActions.isEditable)
                mouse.stop()
        }
    }
    Timer {
        // An edge scrolls, and the library may change, while the mouse rests.
        running: mouse.dragged >= 0
        interval: 50
        repeat: true
        onTriggered: {
            const edge = Theme.rowHeight
            const pace = mouse.mouseY < edge ? mouse.mouseY - edge : mouse.mouseY > mouse.height - edge ? mouse.mouseY - mouse.height + edge : 0
            const last = Math.max(0, mouse.list.contentHeight - mouse.list.height)
            mouse.list.contentY = Math.max(0, Math.min(last, mouse.list.contentY + pace / 2))
            mouse.aim()
        }
    }
    Rectangle {
        objectName: "media-collections-drop-line"
        x: Theme.tight
        y: mouse.gap * Theme.rowHeight - mouse.list.contentY - height / 2
        width: mouse.width - Theme.tight
        height: 4
        radius: 2
        visible: mouse.aimed !== null && mouse.aimed.isPossible
        color: Theme.accent
    }
    Rectangle {
        objectName: "media-collections-forecast"
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; margins: Theme.tight }
        height: words.implicitHeight + 2 * Theme.normal
        visible: mouse.aimed !== null && mouse.aimed.text !== ""
        color: Theme.background
        radius: Theme.radius
        border.width: 1
        border.color: mouse.aimed !== null && !mouse.aimed.isPossible ? Theme.bad : Theme.accent

        ZTLabel {
            id: words

            objectName: "media-collections-forecast-text"
            anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; margins: Theme.normal }
            text: mouse.aimed === null ? "" : mouse.aimed.text
            color: Theme.strong
            wrapMode: Text.WordWrap
        }
    }
}
