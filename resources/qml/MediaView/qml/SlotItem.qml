import QtQuick
import Tessen.Models 1.0
import Tessen.Utils 1.0
import ZTCommon 1.0

// A slot, or a place without media: what it shows, and what is done with it.
Item {
    id: cell

    required property int index
    required property int slot
    required property string name
    required property string length
    required property var thumbnail
    required property int mediaState
    required property int kind
    required property string faults
    required property bool isPlayable
    required property string file
    required property int last
    required property string place
    required property string spoken
    property var pane: null
    readonly property bool isTable: !!pane && pane.isTable
    readonly property bool isSelected: !!pane && (pane.selection.revision, pane.selection.isRowSelected(index))
    readonly property bool isCurrent: !!pane && pane.selection.currentRow === index
    readonly property bool isRenaming: !!pane && pane.renamingSlot === slot
    readonly property bool isPlace: place !== ""
    readonly property bool isAimed: !!pane && pane.aimed !== null && pane.aimed.isPossible && last >= pane.aimed.first
                                    && slot <= pane.aimed.last
    readonly property int collection: pane ? pane.slotModel.collection : -1
    readonly property string arriving: (mediaActions.arrivalsRevision, mediaActions.arriving(collection, slot))
    readonly property string why: arriving === "" ? faults : ""
    // What a drop would take of it.
    readonly property string numbers: isPlace && isAimed ? pane.numbersOf(Math.max(slot, pane.aimed.first), Math.min(last, pane.aimed.last))
                                                         : place
    readonly property string text: isPlace ? numbers + " " + name : name // for who asks what the slot shows
    readonly property bool isOnProgram: mediaState <= Media.ProgramStop
    readonly property bool isOnPreview: !isOnProgram && mediaState <= Media.PreviewStop

    objectName: (pane && pane.panel.index > 0 ? pane.objectName + "-" : "media-") + (isPlace ? "place" : "slot") + slot
    width: GridView.view ? GridView.view.cellWidth : 0
    height: GridView.view ? GridView.view.cellHeight : 0
    Accessible.role: Accessible.ListItem
    Accessible.name: isPlace ? spoken : qsTr("Slot %1, %2, %3").arg(slot).arg(name).arg(arriving !== "" ? arriving : length)
    Accessible.description: [isOnProgram ? qsTr("on program") : isOnPreview ? qsTr("on preview") : "", why]
                                .filter(part => part !== "").join(", ")
    Accessible.selectable: !isPlace
    Accessible.selected: isSelected
    Accessible.focused: isCurrent && pane.hasKeys

    SlotFace {
        id: face

        anchors.fill: parent
        textSize: fontSizes.index
        isTable: cell.isTable
        slot: cell.slot
        name: cell.name
        length: cell.arriving !== "" ? cell.arriving : cell.length
        file: cell.file
        thumbnail: cell.thumbnail
        kind: cell.kind
        isPlayable: cell.isPlayable
        hasFaults: cell.why !== ""
        isOnProgram: cell.isOnProgram
        isOnPreview: cell.isOnPreview
        arrived: cell.arriving !== "" ? (mediaActions.arrivalsRevision, mediaActions.arrivedPart(cell.collection, cell.slot)) : -1
        place: cell.numbers
        isAimed: cell.isAimed
        isSelected: cell.isSelected
        isCurrent: cell.isCurrent
        isHovered: mouse.containsMouse
        hasKeys: !!cell.pane && cell.pane.hasKeys
        isNamed: !cell.isRenaming
    }
    MouseArea {
        id: mouse

        property point from
        property bool wasSelected
        property bool hasDragged

        anchors.fill: parent
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        hoverEnabled: true
        preventStealing: true
        enabled: !cell.isRenaming

        onContainsMouseChanged: {
            if (!containsMouse)
                return toolTips.hide(cell)
            const tip = cell.isPlace ? (mediaActions.isEditable ? mediaActions.placeHint : "")
                                     : (face.isNameCut() ? [cell.name] : []).concat(cell.why !== "" ? [cell.why] : []).join("\n")
            if (tip !== "")
                toolTips.show(cell, tip)
        }
        onPressed: (event) => {
            toolTips.hide(cell)
            cell.pane.takeFocus()
            from = Qt.point(event.x, event.y)
            hasDragged = false
            wasSelected = cell.isSelected
            if (event.button === Qt.RightButton) {
                if (wasSelected)
                    cell.pane.selection.moveTo(cell.index)
                else
                    cell.pane.selection.pick(cell.index, 0)
                cell.pane.openMenu(mapToItem(cell.pane, event.x, event.y))
            } else if (!wasSelected || (event.modifiers & (Qt.ControlModifier | Qt.ShiftModifier))) {
                cell.pane.selection.pick(cell.index, event.modifiers)
            } else {
                cell.pane.selection.moveTo(cell.index)
            }
        }
        onPositionChanged: (event) => {
            const far = Math.abs(event.x - from.x) + Math.abs(event.y - from.y) > 10
            if (!(event.buttons & Qt.LeftButton) || hasDragged || !far || !cell.isSelected)
                return
            hasDragged = true
            mediaActions.startDrag(cell.collection, cell.pane.selectedSlots())
        }
        onClicked: (event) => {
            const plain = !(event.modifiers & (Qt.ControlModifier | Qt.ShiftModifier))
            if (event.button === Qt.LeftButton && plain && wasSelected && !hasDragged)
                cell.pane.selection.pick(cell.index, 0)
        }
        onDoubleClicked: (event) => {
            if (event.button === Qt.LeftButton && !cell.isPlace)
                mediaActions.cue(cell.collection, cell.slot)
        }
    }
    Loader {
        readonly property rect place: active ? (face.width, face.height, face.namePlace()) : Qt.rect(0, 0, 0, 0)

        active: cell.isRenaming
        x: place.x - fontSizes.pad - 2
        y: place.y
        width: Math.max(Theme.scaled(100), place.width + fontSizes.pad + 2)
        height: Math.max(place.height, Theme.rowHeight)
        sourceComponent: ZTTextField {
            fill: Theme.background
            objectName: cell.pane.objectName + "-rename-field"
            implicitHeight: Theme.rowHeight
            text: cell.name
            tip: qsTr("The new name; Enter takes it, Esc leaves the old one")
            Accessible.name: qsTr("New name")
            Component.onCompleted: {
                forceActiveFocus()
                selectAll()
            }
            onAccepted: cell.pane.finishRename(text)
            Keys.onEscapePressed: cell.pane.finishRename("")
            onActiveFocusChanged: if (!activeFocus) cell.pane.finishRename("")
        }
    }
}
