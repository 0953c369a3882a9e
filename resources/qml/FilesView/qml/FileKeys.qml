import QtQuick

// What the keys do in a browser's list.
QtObject {
    id: keys

    property var browser
    property var list
    property var typed
    property var path

    readonly property int page: Math.max(1, Math.floor(list.height / Math.max(1, list.contentHeight / Math.max(1, list.count))) - 1)

    function isText(event) {
        return event.text.length > 0 && event.text.charCodeAt(0) > 32 && event.text.charCodeAt(0) !== 127
               && !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier))
    }

    // Keys that are a shortcut elsewhere mean what they mean here while the list has them.
    function isOurs(event) {
        const plain = [Qt.Key_Up, Qt.Key_Down, Qt.Key_Home, Qt.Key_End, Qt.Key_PageUp, Qt.Key_PageDown, Qt.Key_Return,
                       Qt.Key_Enter, Qt.Key_Backspace, Qt.Key_Delete, Qt.Key_F2, Qt.Key_F5, Qt.Key_Space, Qt.Key_Menu]
        if (plain.indexOf(event.key) >= 0 || isText(event))
            return true
        const held = [Qt.Key_A, Qt.Key_C, Qt.Key_V, Qt.Key_L, Qt.Key_N, Qt.Key_Left, Qt.Key_Right]
        return (event.modifiers & Qt.ControlModifier) && held.indexOf(event.key) >= 0
    }

    function press(event) {
        const selection = browser.selection
        const row = selection.currentRow
        if (event.modifiers & Qt.ControlModifier && command(event))
            return true
        switch (event.key) {
        case Qt.Key_Up: browser.step(row - 1, event.modifiers); return true
        case Qt.Key_Down: browser.step(row + 1, event.modifiers); return true
        case Qt.Key_Home: browser.step(0, event.modifiers); return true
        case Qt.Key_End: browser.step(list.count - 1, event.modifiers); return true
        case Qt.Key_PageUp: browser.step(row - page, event.modifiers); return true
        case Qt.Key_PageDown: browser.step(row + page, event.modifiers); return true
        case Qt.Key_Return:
        case Qt.Key_Enter: browser.openCurrent(); return true
        case Qt.Key_Backspace: browser.goUp(); return true
        case Qt.Key_Delete: browser.askRemove(); return true
        case Qt.Key_F2: browser.startRename(); return true
        case Qt.Key_F5: if (browser.isUsable) browser.refresh(); return true
        case Qt.Key_Menu: browser.openMenu(list.mapToItem(browser, 20, 20)); return true
        case Qt.Key_Space:
            if (typed.text.length === 0) {
                if (row >= 0)
                    selection.toggle(row)
                return true
            }
        }
        return typeAhead(event)
    }

    function command(event) {
        const shift = event.modifiers & Qt.ShiftModifier
        switch (event.key) {
        case Qt.Key_A: browser.selection.selectAll(); return true
        case Qt.Key_C: browser.copy(); return true
        case Qt.Key_V: browser.paste(); return true
        case Qt.Key_L: if (browser.isUsable) path.type(); return true
        case Qt.Key_N: if (shift) browser.askNewFolder(); return shift !== 0
        case Qt.Key_Right: if (browser.isLocal) browser.send(false); return true
        case Qt.Key_Left: if (!browser.isLocal) browser.send(false); return true
        }
        return false
    }

    // To the next name that begins with what is typed.
    function typeAhead(event) {
        if (!browser.isUsable || event.text.length === 0 || event.text.charCodeAt(0) < 32
            || event.modifiers & (Qt.ControlModifier | Qt.AltModifier))
            return false
        const again = typed.text === event.text
        typed.text = again ? event.text : typed.text + event.text
        typed.restart()
        const from = Math.max(0, browser.selection.currentRow) + (typed.text.length === 1 ? 1 : 0)
        const found = browser.model.findRow(typed.text, from)
        if (found >= 0)
            browser.step(found, 0)
        return true
    }
}
