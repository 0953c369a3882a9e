import QtQuick
import ZTCommon 1.0

// A row of a browser.
Item {
    id: row

    required property int index
    required property var model
    required property string name
    required property string shownName
    required property bool isDirectory
    required property string absolutePath
    required property string sizeText
    required property string typeText
    property var browser: null
    // Asked for only where they are shown.
    readonly property string duration: !!browser && !browser.isLocal && !isDirectory ? model.durationText : ""
    readonly property string picture: !!browser && !browser.isLocal && !isDirectory ? model.thumbnail : ""
    // Why it is not played, or not whole.
    readonly property string faults: !!browser && !browser.isLocal && !isDirectory ? model.mediaCaveats.join(" ") : ""
    readonly property bool isPlayable: faults === "" || model.isPlayable
    readonly property bool isSelected: !!browser && (browser.selection.revision, browser.selection.isRowSelected(index))
    readonly property bool isCurrent: !!browser && browser.selection.currentRow === index
    readonly property double progress: browser ? (browser.operationsRevision, browser.progressOf(absolutePath)) : -1
    readonly property bool isRenaming: !!browser && browser.renamingName === name
    readonly property string text: shownName // for who asks what the row shows
    readonly property bool isDropTarget: !!browser && browser.dropRow === index

    objectName: browser ? browser.objectName + "-row" + index : ""
    width: ListView.view ? ListView.view.width : 0
    height: Theme.rowHeight
    Accessible.role: Accessible.ListItem
    Accessible.name: isDirectory ? qsTr("%1, folder").arg(shownName)
                                 : qsTr("%1, %2").arg(shownName).arg(sizeText)
    Accessible.description: faults
    Accessible.selectable: true
    Accessible.selected: isSelected
    Accessible.focused: isCurrent && !!ListView.view && ListView.view.activeFocus

    Rectangle {
        anchors { fill: parent; leftMargin: Theme.tight; rightMargin: fontSizes.bar }
        radius: Theme.radius
        color: row.isDropTarget ? Theme.accentVeil : row.isSelected ? (row.browser.hasKeys ? Theme.accentVeil : Theme.hoverStrong)
             : mouse.containsMouse ? Theme.hover : "transparent"
        border.width: 1
        border.color: row.isDropTarget ? Theme.accent
                    : row.isCurrent && row.browser.hasKeys ? Theme.focus : "transparent"
    }
    Item {
        x: row.browser ? row.browser.placeOf("thumbnail").x : 0
        width: row.browser ? row.browser.placeOf("thumbnail").width : 0
        height: parent.height

        ZTIcon {
            anchors.centerIn: parent
            name: row.browser && row.browser.isTop ? "drive" : row.isDirectory ? "folder" : fileActions.iconOf(row.name)
            color: row.isDirectory ? Theme.text : Theme.faint
            visible: thumbnail.status !== Image.Ready
        }
        Image {
            id: thumbnail

            anchors.centerIn: parent
            width: parent.width - 2 * Theme.tight
            height: parent.height - 4
            sourceSize: Qt.size(width * fontSizes.ratio, height * fontSizes.ratio)
            fillMode: Image.PreserveAspectFit
            source: row.picture
            cache: false
            visible: status === Image.Ready
        }
    }
    ZTLabel {
        id: label

        readonly property var place: row.browser ? row.browser.placeOf("name") : null

        x: place ? place.x + Theme.tight + 2 : 0
        width: place ? place.width - 2 * Theme.tight - 2 - (mark.visible ? mark.width + Theme.tight : 0) : 0
        height: parent.height
        visible: !row.isRenaming
        text: row.shownName
        color: !row.isPlayable ? Theme.faint : row.isSelected ? Theme.strong : Theme.text
        elide: Text.ElideMiddle
        Accessible.ignored: true
    }
    ZTIcon {
        id: mark

        anchors.verticalCenter: parent.verticalCenter
        x: label.x + label.width + Theme.tight
        visible: row.faults !== "" && !row.isRenaming
        name: "error"
        color: row.isPlayable ? Theme.accent : Theme.bad
    }
    Repeater {
        model: row.browser ? row.browser.textColumns : []

        delegate: ZTLabel {
            required property string modelData
            readonly property var place: row.browser.placeOf(modelData)

            x: place.x
            width: place.width - Theme.tight - 2
            height: row.height
            visible: place.width > 0
            horizontalAlignment: Text.AlignRight
            text: modelData === "size" ? row.sizeText : modelData === "type" ? row.typeText : row.duration
            color: Theme.dim
            Accessible.ignored: true
        }
    }
    ZTProgress {
        anchors { left: label.left; right: label.right; bottom: parent.bottom; bottomMargin: 2 }
        height: 3
        visible: row.progress >= 0
        value: row.progress
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
        enabled: !row.isRenaming

        readonly property string tip: (label.truncated ? [row.shownName] : []).concat(row.faults === "" ? [] : [row.faults]).join("\n")

        onContainsMouseChanged: containsMouse && tip !== "" ? toolTips.show(label, tip) : toolTips.hide(label)
        onPressed: (event) => {
            toolTips.hide(label)
            row.browser.takeFocus()
            from = Qt.point(event.x, event.y)
            hasDragged = false
            wasSelected = row.isSelected
            if (event.button === Qt.RightButton) {
                if (!wasSelected)
                    row.browser.selection.pick(row.index, 0)
                row.browser.openMenu(mapToItem(row.browser, event.x, event.y))
            } else if (!wasSelected || (event.modifiers & (Qt.ControlModifier | Qt.ShiftModifier))) {
                row.browser.selection.pick(row.index, event.modifiers)
            } else {
                row.browser.selection.moveTo(row.index)
            }
        }
        onPositionChanged: (event) => {
            const far = Math.abs(event.x - from.x) + Math.abs(event.y - from.y) > 10
            if (!(event.buttons & Qt.LeftButton) || hasDragged || !far || row.browser.isTop)
                return
            hasDragged = true
            row.browser.startDrag()
        }
        onClicked: (event) => {
            const plain = !(event.modifiers & (Qt.ControlModifier | Qt.ShiftModifier))
            if (event.button === Qt.LeftButton && plain && wasSelected && !hasDragged)
                row.browser.selection.pick(row.index, 0)
        }
        onDoubleClicked: (event) => {
            if (event.button === Qt.LeftButton)
                row.browser.openRow(row.index)
        }
    }
    Loader {
        active: row.isRenaming
        x: label.x - fontSizes.pad2 - 3
        width: label.width + fontSizes.pad2 + 3
        height: parent.height
        sourceComponent: ZTTextField {
            objectName: row.browser.objectName + "-rename-field"
            implicitHeight: row.height
            fill: Theme.background
            text: row.name
            tip: qsTr("The new name; Enter takes it, Esc leaves the old one")
            Accessible.name: qsTr("New name")
            Component.onCompleted: {
                forceActiveFocus()
                const dot = row.isDirectory ? -1 : row.name.lastIndexOf(".")
                select(0, dot > 0 ? dot : row.name.length)
            }
            onAccepted: row.browser.finishRename(text)
            Keys.onEscapePressed: row.browser.finishRename("")
            onActiveFocusChanged: if (!activeFocus) row.browser.finishRename("")
        }
    }
}
