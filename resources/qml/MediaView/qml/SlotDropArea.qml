import QtQuick
import ZTCommon 1.0

// What is dragged over the slots: on a slot it points at that one, on a place at its first number, between two slots at
// the first room behind the left one.
Item {
    id: area

    property var pane
    property var grid
    readonly property var slotModel: pane.slotModel
    readonly property bool containsDrag: drops.containsDrag
    readonly property var aimed: pane.aimed
    property point at // of the drag
    // Where the line stands: the row in front of which it lands; -1 where it takes what is there.
    readonly property int lineRow: {
        if (aimed === null || !aimed.isPossible)
            return -1
        return slotModel.rowHolding(aimed.first) >= 0 ? -1 : slotModel.rowFrom(aimed.first)
    }

    function slotUnder(x, y) {
        const behind = row => mediaActions.roomBehind(slotModel.numberBefore(row))
        const row = grid.indexAt(x - grid.x, y + grid.contentY)
        if (row < 0)
            return behind(grid.count - 1)
        if (!slotModel.isSlotAt(row))
            return slotModel.slotAt(row)
        const place = pane.isTable ? (y + grid.contentY) / grid.cellHeight - row
                                   : (x - grid.x) / grid.cellWidth - row % pane.columns
        const edge = pane.isTable ? 0.3 : 0.15
        return place < edge ? behind(row - 1) : place > 1 - edge ? behind(row) : slotModel.slotAt(row)
    }
    function aim() {
        pane.target = slotUnder(at.x, at.y)
        pane.aimed = mediaActions.aim(pane.target)
    }
    function leave() {
        pane.target = -1
        pane.aimed = null
        mediaActions.endDrop()
    }

    DropArea {
        id: drops

        anchors.fill: parent
        onEntered: (drag) => {
            area.at = Qt.point(drag.x, drag.y)
            drag.accepted = mediaActions.beginDrop(slotModel.collection)
        }
        onPositionChanged: (drag) => {
            area.at = Qt.point(drag.x, drag.y)
            area.aim()
            drag.accept(Qt.CopyAction)
        }
        onExited: area.leave()
        onDropped: (drop) => {
            // A copy to the drag: what goes, goes when the server says so.
            drop.accept(Qt.CopyAction)
            mediaActions.drop(area.slotUnder(drop.x, drop.y))
            area.leave()
        }
    }
    Timer {
        // A key may be pressed, and an edge scrolls, while the mouse rests.
        running: drops.containsDrag && area.aimed !== null
        interval: 50
        repeat: true
        onTriggered: {
            const edge = Theme.scaled(36)
            const pace = area.at.y < edge ? area.at.y - edge : area.at.y > area.height - edge ? area.at.y - area.height + edge : 0
            const last = Math.max(0, area.grid.contentHeight - area.grid.height)
            area.grid.contentY = Math.max(0, Math.min(last, area.grid.contentY + pace))
            area.aim()
        }
    }
    Item {
        id: line

        readonly property bool isBehind: area.lineRow >= area.grid.count
        readonly property int row: isBehind ? area.grid.count - 1 : area.lineRow
        readonly property int column: row % area.pane.columns
        readonly property int band: Math.floor(row / area.pane.columns)

        objectName: area.pane.objectName + "-drop-line"
        visible: area.lineRow >= 0 && area.grid.count > 0
        x: area.grid.x + (area.pane.isTable ? 0 : (column + (isBehind ? 1 : 0)) * area.grid.cellWidth)
        y: (band + (area.pane.isTable && isBehind ? 1 : 0)) * area.grid.cellHeight - area.grid.contentY
        width: area.pane.isTable ? area.grid.width : 0
        height: area.pane.isTable ? 0 : area.grid.cellHeight

        Rectangle {
            x: area.pane.isTable ? 0 : -2
            y: area.pane.isTable ? -2 : 0
            width: area.pane.isTable ? parent.width - fontSizes.bar : 4
            height: area.pane.isTable ? 4 : parent.height
            radius: 2
            color: Theme.accent
        }
        Rectangle {
            // Which numbers it takes.
            readonly property point place: area.pane.isTable ? Qt.point(Theme.scaled(70), -height / 2)
                                                             : Qt.point(-width / 2, Theme.normal)
            x: Math.max(-line.x, Math.min(place.x, area.width - line.x - width))
            y: Math.max(-line.y, place.y)
            width: numbers.implicitWidth + 2 * Theme.normal
            height: numbers.implicitHeight + Theme.tight
            radius: Theme.radius
            color: Theme.accent

            ZTLabel {
                id: numbers

                objectName: area.pane.objectName + "-drop-numbers"
                anchors.centerIn: parent
                text: area.aimed === null ? "" : area.pane.numbersOf(area.aimed.first, area.aimed.last)
                color: Theme.onAccent
                font.weight: Font.DemiBold
            }
        }
    }
    Rectangle {
        objectName: area.pane.objectName + "-forecast"
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; margins: Theme.tight }
        height: words.implicitHeight + 2 * Theme.normal
        visible: area.aimed !== null
        color: Theme.background
        radius: Theme.radius
        border.width: 1
        border.color: area.aimed !== null && (!area.aimed.isPossible || area.aimed.overwrites) ? Theme.bad : Theme.accent

        ZTLabel {
            id: words

            objectName: area.pane.objectName + "-forecast-text"
            anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; margins: Theme.normal }
            text: area.aimed === null ? "" : area.aimed.canCopy ? qsTr("%1 Ctrl copies instead.").arg(area.aimed.text)
                                          : area.aimed.canMove ? qsTr("%1 Shift moves instead.").arg(area.aimed.text)
                                                               : area.aimed.text
            color: Theme.strong
            wrapMode: Text.WordWrap
        }
    }
}
