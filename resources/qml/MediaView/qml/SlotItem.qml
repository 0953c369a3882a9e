import QtQuick
import Tessen.Utils 1.0
import ZTCommon 1.0

// A slot: a picture with its number and name below, or a row of a table.
Item {
    id: item

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
    readonly property string text: name // for who asks what the slot shows
    readonly property bool isOnProgram: mediaState <= Media.ProgramStop
    readonly property bool isOnPreview: !isOnProgram && mediaState <= Media.PreviewStop
    readonly property string why: faults !== "" ? faults : isPlayable ? "" : qsTr("The file is missing or cannot be played.")

    objectName: "media-slot" + slot
    width: GridView.view ? GridView.view.cellWidth : 0
    height: GridView.view ? GridView.view.cellHeight : 0
    Accessible.role: Accessible.ListItem
    Accessible.name: qsTr("Slot %1, %2, %3").arg(slot).arg(name).arg(length)
    Accessible.description: [isOnProgram ? qsTr("on program") : isOnPreview ? qsTr("on preview") : "", why]
                                .filter(part => part !== "").join(", ")
    Accessible.selectable: true
    Accessible.selected: isSelected

    Rectangle {
        id: box

        anchors { fill: parent; margins: item.isTable ? 1 : 2 }
        anchors.rightMargin: item.isTable ? fontSizes.bar + 1 : 2
        radius: Theme.radius
        color: item.isAimed ? Theme.accentVeil : item.isSelected ? (item.pane.hasKeys ? Theme.accentVeil : Theme.hoverStrong)
             : mouse.containsMouse ? Theme.hover : "transparent"
        border.width: 1
        border.color: item.isAimed ? Theme.accent : item.isCurrent && item.pane.hasKeys ? Theme.focus : "transparent"
    }
    Rectangle {
        id: screen

        x: item.isTable ? number.x + number.width + Theme.normal : 2 * Theme.tight
        y: item.isTable ? 2 : 2 * Theme.tight
        width: item.isTable ? Math.round(height * 16 / 9) : item.width - 4 * Theme.tight
        height: item.isTable ? item.height - 4 : Math.round(width * 9 / 16)
        radius: 3
        color: Theme.field

        ZTIcon {
            anchors.centerIn: parent
            side: Math.round(parent.height * (item.isTable ? 0.6 : 0.4))
            name: item.kind === Media.VideoFile ? "video" : item.kind === Media.AudioFile ? "audio"
                : item.kind === Media.ImageFile ? "image" : item.kind === Media.ImageSequence ? "image_sequence" : "media"
            color: Theme.faint
            visible: thumbnail.status !== Image.Ready
        }
        Image {
            id: thumbnail

            anchors.fill: parent
            sourceSize: Qt.size(width * Screen.devicePixelRatio, height * Screen.devicePixelRatio)
            fillMode: Image.PreserveAspectFit
            source: item.picture
            cache: false
            visible: status === Image.Ready
        }
        Rectangle {
            // Which channel has it, in that channel's colour.
            anchors.fill: parent
            color: "transparent"
            radius: 3
            border.width: 2
            border.color: item.isOnProgram ? Theme.program : Theme.good
            visible: item.isOnProgram || item.isOnPreview
        }
    }
    ZTLabel {
        id: number

        x: item.isTable ? Theme.tight : 2 * Theme.tight
        y: item.isTable ? 0 : screen.y + screen.height + Theme.tight
        width: item.isTable ? Theme.scaled(52) : Math.ceil(digits.advanceWidth)
        height: item.isTable ? item.height : Theme.rowHeight - Theme.tight
        horizontalAlignment: item.isTable ? Text.AlignRight : Text.AlignLeft
        text: item.slot
        color: item.isOnProgram ? Theme.program : item.isOnPreview ? Theme.good : Theme.dim
        font.weight: Font.DemiBold
        Accessible.ignored: true
    }
    TextMetrics {
        id: digits

        font: number.font
        text: item.slot
    }
    ZTLabel {
        id: label

        readonly property int after: item.isTable ? screen.x + screen.width : number.x + number.width
        readonly property int end: item.isTable ? (fileName.visible ? fileName.x : duration.x) : item.width - 2 * Theme.tight

        x: after + Theme.normal
        y: number.y
        width: Math.max(0, end - x - Theme.normal - (mark.visible && item.isTable ? mark.width + Theme.tight : 0))
        height: number.height
        visible: !item.isRenaming
        text: item.name
        color: !item.isPlayable ? Theme.faint : item.isSelected ? Theme.strong : Theme.text
        Accessible.ignored: true
    }
    ZTIcon {
        id: mark

        x: item.isTable ? label.x + label.width + Theme.tight : item.width - width - 2 * Theme.tight
        y: item.isTable ? Math.round((item.height - height) / 2) : duration.y + Math.round((duration.height - height) / 2)
        visible: item.why !== ""
        name: "error"
        color: item.isPlayable ? Theme.accent : Theme.bad
    }
    ZTLabel {
        id: fileName

        x: Math.round(item.width * 0.55)
        width: Math.max(0, duration.x - x - Theme.normal)
        height: item.height
        visible: item.isTable && item.width >= Theme.scaled(560)
        text: item.file
        color: Theme.dim
        elide: Text.ElideMiddle
        Accessible.ignored: true
    }
    ZTLabel {
        id: duration

        x: item.isTable ? item.width - width - fontSizes.bar - Theme.normal : number.x
        y: item.isTable ? 0 : number.y + number.height
        width: item.isTable ? Theme.scaled(96) : item.width - 4 * Theme.tight - (mark.visible ? mark.width + Theme.tight : 0)
        height: number.height
        horizontalAlignment: item.isTable ? Text.AlignRight : Text.AlignLeft
        text: item.length
        color: Theme.dim
        font.pixelSize: item.isTable ? fontSizes.body : fontSizes.caption
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
        enabled: !item.isRenaming

        readonly property string tip: (label.truncated ? [item.name] : []).concat(item.why === "" ? [] : [item.why]).join("\n")

        onContainsMouseChanged: containsMouse && tip !== "" ? toolTips.show(label, tip) : toolTips.hide(label)
        onPressed: (event) => {
            toolTips.hide(label)
            item.pane.takeFocus()
            from = Qt.point(event.x, event.y)
            hasDragged = false
            wasSelected = item.isSelected
            if (event.button === Qt.RightButton) {
                if (wasSelected)
                    item.pane.selection.moveTo(item.index)
                else
                    item.pane.selection.pick(item.index, 0)
                item.pane.openMenu(mapToItem(item.pane, event.x, event.y))
            } else if (!wasSelected || (event.modifiers & (Qt.ControlModifier | Qt.ShiftModifier))) {
                item.pane.selection.pick(item.index, event.modifiers)
            } else {
                item.pane.selection.moveTo(item.index)
            }
        }
        onPositionChanged: (event) => {
            const far = Math.abs(event.x - from.x) + Math.abs(event.y - from.y) > 10
            if (!(event.buttons & Qt.LeftButton) || hasDragged || !far || !item.isSelected)
                return
            hasDragged = true
            mediaActions.startDrag(item.pane.selectedSlots())
        }
        onClicked: (event) => {
            const plain = !(event.modifiers & (Qt.ControlModifier | Qt.ShiftModifier))
            if (event.button === Qt.LeftButton && plain && wasSelected && !hasDragged)
                item.pane.selection.pick(item.index, 0)
        }
        onDoubleClicked: (event) => {
            if (event.button === Qt.LeftButton)
                mediaActions.cue(item.slot)
        }
    }
    Loader {
        active: item.isRenaming
        x: label.x - fontSizes.pad - 2
        y: label.y
        width: Math.max(Theme.scaled(100), label.width + fontSizes.pad + 2)
        height: Math.max(label.height, Theme.rowHeight)
        sourceComponent: ZTTextField {
            fill: Theme.background
            objectName: "media-slots-rename-field"
            implicitHeight: Theme.rowHeight
            text: item.name
            tip: qsTr("The new name; Enter takes it, Esc leaves the old one")
            Accessible.name: qsTr("New name")
            Component.onCompleted: {
                forceActiveFocus()
                selectAll()
            }
            onAccepted: item.pane.finishRename(text)
            Keys.onEscapePressed: item.pane.finishRename("")
            onActiveFocusChanged: if (!activeFocus) item.pane.finishRename("")
        }
    }
}
