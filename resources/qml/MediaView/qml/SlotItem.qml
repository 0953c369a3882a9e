import QtQuick
import Tessen.Utils 1.0
import ZTCommon 1.0

// A slot: a picture with its number and name below, or a row of a table.
Item {
    id: cell

    required property int index
    required property int slot
    required property string name
    required property string length
    required property string picture
    required property int mediaState
    required property int kind
    required property string faults
    required property bool isPlayable
    required property string file
    property var pane: null
    readonly property bool isTable: !!pane && pane.isTable
    readonly property bool isSelected: !!pane && (pane.selection.revision, pane.selection.isRowSelected(index))
    readonly property bool isCurrent: !!pane && pane.selection.currentRow === index
    readonly property bool isRenaming: !!pane && pane.renamingSlot === slot
    readonly property bool isAimed: !!pane && pane.aimed !== null && pane.aimed.isPossible && slot >= pane.aimed.first
                                    && slot <= pane.aimed.last
    readonly property int collection: pane ? pane.slotModel.collection : -1
    readonly property string arriving: (mediaActions.arrivalsRevision, mediaActions.arriving(collection, slot))
    readonly property string why: arriving === "" ? faults : ""
    readonly property string text: name // for who asks what the slot shows
    readonly property bool isOnProgram: mediaState <= Media.ProgramStop
    readonly property bool isOnPreview: !isOnProgram && mediaState <= Media.PreviewStop

    objectName: (pane && pane.panel.index > 0 ? pane.objectName + "-slot" : "media-slot") + slot
    width: GridView.view ? GridView.view.cellWidth : 0
    height: GridView.view ? GridView.view.cellHeight : 0
    Accessible.role: Accessible.ListItem
    Accessible.name: qsTr("Slot %1, %2, %3").arg(slot).arg(name).arg(length)
    Accessible.description: [isOnProgram ? qsTr("on program") : isOnPreview ? qsTr("on preview") : "", faults]
                                .filter(part => part !== "").join(", ")
    Accessible.selectable: true
    Accessible.selected: isSelected

    Rectangle {
        id: box

        anchors { fill: parent; margins: cell.isTable ? 1 : 2 }
        anchors.rightMargin: cell.isTable ? fontSizes.bar + 1 : 2
        // What shows nothing is not drawn: round corners are what a picture of many slots costs most.
        visible: cell.isAimed || cell.isSelected || cell.isCurrent || mouse.containsMouse
        radius: Theme.radius
        color: cell.isAimed ? Theme.accentVeil : cell.isSelected ? (cell.pane.hasKeys ? Theme.accentVeil : Theme.hoverStrong)
             : mouse.containsMouse ? Theme.hover : "transparent"
        border.width: 1
        border.color: cell.isAimed ? Theme.accent : cell.isCurrent && cell.pane.hasKeys ? Theme.focus : "transparent"
    }
    Rectangle {
        id: screen

        x: cell.isTable ? number.x + number.width + Theme.normal : 2 * Theme.tight
        y: cell.isTable ? 2 : 2 * Theme.tight
        width: cell.isTable ? Math.round(height * 16 / 9) : cell.width - 4 * Theme.tight
        height: cell.isTable ? cell.height - 4 : Math.round(width * 9 / 16)
        color: Theme.field

        KindIcon {
            anchors.centerIn: parent
            side: Math.round(parent.height * (cell.isTable ? 0.6 : 0.4))
            kind: cell.kind
            visible: thumbnail.status !== Image.Ready
        }
        Image {
            id: thumbnail

            anchors.fill: parent
            sourceSize: Qt.size(width * fontSizes.ratio, height * fontSizes.ratio)
            fillMode: Image.PreserveAspectFit
            source: cell.picture
            cache: false
            visible: status === Image.Ready
        }
        ZTProgress {
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom; margins: cell.isTable ? 2 : Theme.normal }
            height: cell.isTable ? 4 : 8
            visible: cell.arriving !== ""
            value: visible ? (mediaActions.arrivalsRevision, mediaActions.arrivedPart(cell.collection, cell.slot)) : 0
        }
        Rectangle {
            // Which channel has it, in that channel's colour.
            anchors.fill: parent
            color: "transparent"
            border.width: 2
            border.color: cell.isOnProgram ? Theme.program : Theme.good
            visible: cell.isOnProgram || cell.isOnPreview
        }
    }
    ZTLabel {
        id: number

        x: cell.isTable ? Theme.tight : 2 * Theme.tight
        y: cell.isTable ? 0 : screen.y + screen.height + Theme.tight
        width: cell.isTable ? Theme.scaled(52) : Math.ceil(digits.advanceWidth)
        height: cell.isTable ? cell.height : Theme.rowHeight - Theme.tight
        horizontalAlignment: cell.isTable ? Text.AlignRight : Text.AlignLeft
        text: cell.slot
        color: cell.isOnProgram ? Theme.program : cell.isOnPreview ? Theme.good : Theme.dim
        font.weight: Font.DemiBold
        Accessible.ignored: true
    }
    TextMetrics {
        id: digits

        font: number.font
        text: cell.slot
    }
    ZTLabel {
        id: label

        readonly property int after: cell.isTable ? screen.x + screen.width : number.x + number.width
        readonly property int end: cell.isTable ? (fileName.visible ? fileName.x : duration.x) : cell.width - 2 * Theme.tight

        x: after + Theme.normal
        y: number.y
        width: Math.max(0, end - x - Theme.normal - (mark.visible && cell.isTable ? mark.width + Theme.tight : 0))
        height: number.height
        visible: !cell.isRenaming
        text: cell.name
        color: !cell.isPlayable ? Theme.faint : cell.isSelected ? Theme.strong : Theme.text
        Accessible.ignored: true
    }
    ZTIcon {
        id: mark

        x: cell.isTable ? label.x + label.width + Theme.tight : cell.width - width - 2 * Theme.tight
        y: cell.isTable ? Math.round((cell.height - height) / 2) : duration.y + Math.round((duration.height - height) / 2)
        visible: cell.why !== ""
        name: "error"
        color: cell.isPlayable ? Theme.accent : Theme.bad
    }
    ZTLabel {
        id: fileName

        x: Math.round(cell.width * 0.55)
        width: Math.max(0, duration.x - x - Theme.normal)
        height: cell.height
        visible: cell.isTable && cell.width >= Theme.scaled(560)
        text: cell.file
        color: Theme.dim
        elide: Text.ElideMiddle
        Accessible.ignored: true
    }
    ZTLabel {
        id: duration

        x: cell.isTable ? cell.width - width - fontSizes.bar - Theme.normal : number.x
        y: cell.isTable ? 0 : number.y + number.height
        width: cell.isTable ? Theme.scaled(96) : cell.width - 4 * Theme.tight - (mark.visible ? mark.width + Theme.tight : 0)
        height: number.height
        horizontalAlignment: cell.isTable ? Text.AlignRight : Text.AlignLeft
        text: cell.arriving !== "" ? cell.arriving : cell.length
        color: cell.arriving !== "" ? Theme.strong : Theme.dim
        font.pixelSize: cell.isTable ? fontSizes.body : fontSizes.caption
        Accessible.ignored: true
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

        readonly property string tip: (label.truncated ? [cell.name] : []).concat(cell.why === "" ? [] : [cell.why]).join("\n")

        onContainsMouseChanged: containsMouse && tip !== "" ? toolTips.show(label, tip) : toolTips.hide(label)
        onPressed: (event) => {
            toolTips.hide(label)
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
            if (event.button === Qt.LeftButton)
                mediaActions.cue(cell.collection, cell.slot)
        }
    }
    Loader {
        active: cell.isRenaming
        x: label.x - fontSizes.pad - 2
        y: label.y
        width: Math.max(Theme.scaled(100), label.width + fontSizes.pad + 2)
        height: Math.max(label.height, Theme.rowHeight)
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
