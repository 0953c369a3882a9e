import QtQuick
import ZTCommon 1.0

// A row of what was found: its name, what is wrong with it, and how it will run.
Rectangle {
    id: row

    required property int index
    property var pane: null
    property string iconName
    property string name
    property string fault
    property var details: []
    readonly property string text: [name, fault].concat(details).filter(part => part !== "").join(", ")
    readonly property bool isSelected: !!pane && (pane.selection.revision, pane.selection.isRowSelected(index))
    readonly property bool isCurrent: !!pane && pane.hasKeys && pane.selection.currentRow === index

    objectName: pane ? pane.objectName + "-row" + index : ""
    width: ListView.view ? ListView.view.width : 0
    height: Theme.rowHeight
    radius: Theme.radius
    color: isSelected ? (pane.hasKeys ? Theme.accentVeil : Theme.hoverStrong) : mouse.containsMouse ? Theme.hover : "transparent"
    border.width: 1
    border.color: isCurrent ? Theme.focus : "transparent"
    Accessible.role: Accessible.ListItem
    Accessible.name: text
    Accessible.selectable: true
    Accessible.selected: isSelected
    Accessible.focused: isCurrent

    ZTIcon {
        id: icon

        x: Theme.normal
        anchors.verticalCenter: parent.verticalCenter
        name: row.iconName
        color: Theme.dim
    }
    ZTLabel {
        id: label

        anchors { left: icon.right; right: facts.left; leftMargin: Theme.normal; rightMargin: Theme.normal }
        height: parent.height
        text: row.name
        color: row.isSelected ? Theme.strong : Theme.text
        elide: Text.ElideMiddle
        Accessible.ignored: true
    }
    Row {
        id: facts

        anchors { right: parent.right; rightMargin: fontSizes.bar + Theme.tight }
        height: parent.height
        spacing: Theme.loose

        ZTLabel {
            height: parent.height
            visible: text !== ""
            text: row.fault
            color: Theme.notice
            Accessible.ignored: true
        }
        Repeater {
            model: row.details

            ZTLabel {
                required property string modelData

                height: facts.height
                text: modelData
                color: Theme.dim
                Accessible.ignored: true
            }
        }
    }
    MouseArea {
        id: mouse

        anchors.fill: parent
        hoverEnabled: true
        preventStealing: true
        onContainsMouseChanged: containsMouse && label.truncated ? toolTips.show(label, row.name) : toolTips.hide(label)
        onPressed: (event) => {
            toolTips.hide(label)
            row.ListView.view.forceActiveFocus()
            row.pane.selection.pick(row.index, event.modifiers)
        }
    }
}
