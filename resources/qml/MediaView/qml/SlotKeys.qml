import QtQuick

// What the keys do in the slots.
QtObject {
    property var pane
    property var grid
    property var typed
    readonly property var slotModel: pane.slotModel

    readonly property int page: Math.max(1, Math.floor(grid.height / Math.max(1, grid.cellHeight))) * pane.columns

    function isText(event) {
        return event.text.length > 0 && event.text.charCodeAt(0) > 32 && event.text.charCodeAt(0) !== 127
               && !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier))
    }

    // Keys that are a shortcut elsewhere mean what they mean here while the slots have them.
    function isOurs(event) {
        const plain = [Qt.Key_Up, Qt.Key_Down, Qt.Key_Left, Qt.Key_Right, Qt.Key_Home, Qt.Key_End, Qt.Key_PageUp,
                       Qt.Key_PageDown, Qt.Key_Menu, Qt.Key_F6]
        return plain.indexOf(event.key) >= 0 || isText(event) || mediaActions.actionOf(event.key, event.modifiers) !== ""
               || (event.modifiers & Qt.ControlModifier && [Qt.Key_A, Qt.Key_F, Qt.Key_Space, Qt.Key_W].indexOf(event.key) >= 0)
    }

    // The last slot comes first, and what is free beyond it next.
    function edge(row, slotRow) { return slotRow < 0 || slotRow === pane.selection.currentRow ? row : slotRow }

    function press(event) {
        const row = pane.selection.currentRow
        // Held down, none of them is meant twice.
        const action = mediaActions.actionOf(event.key, event.modifiers)
        if (action !== "") {
            if (event.isAutoRepeat)
                return true
            if (action === "cue") pane.cueCurrent()
            else if (action === "rename") pane.startRename()
            else if (action === "copy") pane.copySelected(false)
            else if (action === "cut") pane.copySelected(true)
            else if (action === "paste") pane.paste()
            else if (action === "move_slots") pane.askMove()
            else if (action === "insert_media") pane.askPlaylist(grid.mapToItem(pane, 20, 20))
            else if (action === "delete") pane.clearSelected()
            else return false
            return true
        }
        if (event.modifiers & Qt.ControlModifier) {
            switch (event.key) {
            case Qt.Key_A: pane.selection.selectAll(); return true
            case Qt.Key_F: pane.tools.find(); return true
            case Qt.Key_W: if (!event.isAutoRepeat) pane.view.closePane(); return true
            case Qt.Key_Space: if (row >= 0) pane.selection.toggle(row); return true
            }
        }
        switch (event.key) {
        case Qt.Key_Left: pane.step(row - 1, event.modifiers); return true
        case Qt.Key_Right: pane.step(row + 1, event.modifiers); return true
        case Qt.Key_Up: if (row < 0 || row >= pane.columns) pane.step(row - pane.columns, event.modifiers); return true
        case Qt.Key_Down: pane.step(row + pane.columns, event.modifiers); return true
        case Qt.Key_Home: pane.step(edge(0, slotModel.nearestSlot(0, false)), event.modifiers); return true
        case Qt.Key_End: pane.step(edge(grid.count - 1, slotModel.nearestSlot(grid.count - 1, true)), event.modifiers); return true
        case Qt.Key_PageUp: pane.step(row - page, event.modifiers); return true
        case Qt.Key_PageDown: pane.step(row + page, event.modifiers); return true
        case Qt.Key_F6: pane.view.stepPane(event.modifiers & Qt.ShiftModifier ? -1 : 1); return true
        case Qt.Key_Menu: pane.openMenu(grid.mapToItem(pane, 20, 20)); return true
        }
        return typeAhead(event)
    }

    // To the slot of that number, or the next whose name begins with what is typed.
    function typeAhead(event) {
        if (!isText(event) && !(event.key === Qt.Key_Space && typed.text.length > 0))
            return false
        const isDigit = event.text >= "0" && event.text <= "9"
        const again = typed.text === event.text && !isDigit
        typed.text = again ? event.text : typed.text + event.text
        typed.restart()
        const from = Math.max(0, pane.selection.currentRow) + (typed.text.length === 1 ? 1 : 0)
        const found = slotModel.findRow(typed.text, from)
        if (found >= 0)
            pane.step(found, 0)
        return true
    }
}
