import QtQuick
import Tessen.Models 1.0
import ZTCommon 1.0

// A list of what was found, and below it what can be changed in all rows that are selected.
FocusScope {
    id: pane

    property string name
    property alias model: selection.rowModel
    property alias delegate: list.delegate
    default property alias form: fields.data
    readonly property alias selection: selection
    readonly property alias count: list.count
    readonly property bool hasKeys: list.activeFocus
    // Of the selected rows; changes with what stands in them.
    readonly property var rows: (edits, selection.revision, selection.rows())
    property int edits: 0
    property bool isEdited: true // what stands in the rows can be changed: in all of them, until some are chosen

    implicitHeight: heading.height + Theme.tight + Math.min(6, Math.max(3, count)) * Theme.rowHeight + 2 + Theme.normal
                    + fields.height

    function fill() { list.forceLayout() }
    function takeKeys() { list.forceActiveFocus() }
    function value(role) { return model.valueOf(rows, role) }
    function write(role, value) { return model.writeRows(rows, value, role) }
    function step(to, modifiers) {
        if (count === 0)
            return
        const row = Math.max(0, Math.min(count - 1, to))
        if ((modifiers & Qt.ControlModifier) && !(modifiers & Qt.ShiftModifier))
            selection.moveTo(row)
        else
            selection.pick(row, modifiers & Qt.ShiftModifier)
        list.positionViewAtIndex(row, ListView.Contain)
    }
    function press(event) {
        const page = Math.max(1, Math.floor(list.height / Theme.rowHeight) - 1)
        const steps = { [Qt.Key_Up]: -1, [Qt.Key_Down]: 1, [Qt.Key_PageUp]: -page, [Qt.Key_PageDown]: page,
                        [Qt.Key_Home]: -count, [Qt.Key_End]: count }
        if (event.key in steps)
            step(selection.currentRow + steps[event.key], event.modifiers)
        else if (event.key === Qt.Key_Space && selection.currentRow >= 0)
            selection.toggle(selection.currentRow)
        else if (event.key === Qt.Key_A && event.modifiers & Qt.ControlModifier)
            selection.selectAll()
        else if (event.key === Qt.Key_Delete)
            model.leaveOut(rows)
        else
            return false
        return true
    }

    Component.onCompleted: if (isEdited) selection.selectAll()

    ZTSelectionModel { id: selection }
    Connections {
        property bool wasAll

        target: pane.model

        function onDataChanged() { if (pane.isEdited) ++pane.edits }
        function onModelAboutToBeReset() { wasAll = pane.selection.selectedCount === pane.count }
        function onModelReset() {
            ++pane.edits
            if (wasAll)
                Qt.callLater(selection.selectAll)
        }
    }
    ZTLabel {
        id: heading

        anchors { left: parent.left; right: parent.right }
        height: implicitHeight
        text: pane.selection.selectedCount === (pane.isEdited ? pane.count : 0) ? qsTr("%1 (%2)").arg(pane.name).arg(pane.count)
            : qsTr("%1 (%2 of %3 selected)").arg(pane.name).arg(pane.selection.selectedCount).arg(pane.count)
        color: Theme.dim
        font.weight: Font.DemiBold
    }
    Rectangle {
        anchors { left: parent.left; right: parent.right; top: heading.bottom; bottom: fields.top }
        anchors { topMargin: Theme.tight; bottomMargin: Theme.normal }
        color: Theme.field
        radius: Theme.radius
        border.width: 1
        border.color: list.activeFocus ? Theme.focus : Theme.line

        ZTList {
            id: list

            objectName: pane.objectName + "-list"
            anchors { fill: parent; margins: 1 }
            activeFocusOnTab: true
            model: pane.model
            Accessible.role: Accessible.List
            Accessible.name: pane.name
            currentRow: selection.currentRow
            onActiveFocusChanged: if (activeFocus && selection.currentRow < 0) selection.moveTo(0)
            Keys.onShortcutOverride: (event) => event.accepted = event.key === Qt.Key_Delete
                                     || (event.key === Qt.Key_A && event.modifiers & Qt.ControlModifier)
            Keys.onPressed: (event) => event.accepted = pane.press(event)
        }
    }
    Row {
        id: fields

        anchors { left: parent.left; right: leaveOut.left; bottom: parent.bottom; rightMargin: Theme.normal }
        height: Math.max(implicitHeight, leaveOut.implicitHeight)
        spacing: Theme.loose
        enabled: pane.selection.selectedCount > 0
    }
    ZTButton {
        id: leaveOut

        objectName: pane.objectName + "-leave-out-button"
        anchors { right: parent.right; bottom: parent.bottom }
        iconName: "trash"
        tip: qsTr("Leave out what is selected (Del)")
        enabled: pane.selection.selectedCount > 0
        onClicked: pane.model.leaveOut(pane.rows)
    }
}
