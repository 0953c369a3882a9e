import QtQuick
import QtQuick.Templates as T
import ZTCommon 1.0

// The playlists, to the end of one of which the selected slots go.
ZTPopup {
    id: popup

    property var pane
    property var lists: []
    property int row: 0 // 0 is a new one

    function begin(at) {
        lists = [{ number: -1, text: qsTr("New playlist") }].concat(playlistAdditions.lists())
        const shown = playlistAdditions.shownList()
        row = Math.max(0, lists.findIndex(list => list.number >= 0 && list.number === shown))
        if (row === 0 && lists.length > 1)
            row = 1
        x = Math.max(0, Math.min(at.x, parent.width - width))
        y = Math.max(0, Math.min(at.y, parent.height - height))
        open()
        list.positionViewAtIndex(row, ListView.Contain)
        list.forceActiveFocus()
    }
    function step(to) {
        row = Math.max(0, Math.min(lists.length - 1, to))
        list.positionViewAtIndex(row, ListView.Contain)
    }
    function take() {
        const chosen = lists[row].number
        close()
        pane.say(playlistAdditions.add(pane.slotModel.collection, pane.selectedSlots(), chosen))
    }

    objectName: "media-playlist-popup"
    implicitWidth: Theme.scaled(280)
    implicitHeight: Math.min(parent ? parent.height : 400,
                             title.height + Theme.tight + Math.min(lists.length, 10) * Theme.rowHeight + 2 * padding)
    onClosed: pane.takeFocus()

    contentItem: Item {
        ZTLabel {
            id: title

            anchors { left: parent.left; right: parent.right }
            text: qsTr("Add to the end of")
            color: Theme.dim
        }
        ZTList {
            id: list

            objectName: "media-playlist-popup-list"
            anchors { left: parent.left; right: parent.right; top: title.bottom; bottom: parent.bottom; topMargin: Theme.tight }
            focus: true
            model: popup.lists
            currentRow: popup.row
            Accessible.role: Accessible.List
            Accessible.name: title.text
            delegate: Item {
                id: item

                required property int index
                required property var modelData
                readonly property string text: modelData.text // for who asks what the row shows

                objectName: "media-playlist-popup-row" + index
                width: list.width
                height: Theme.rowHeight
                Accessible.role: Accessible.ListItem
                Accessible.name: text
                Accessible.selectable: true
                Accessible.selected: popup.row === index
                Accessible.focused: popup.row === index && list.activeFocus

                Rectangle {
                    anchors { fill: parent; rightMargin: list.T.ScrollBar.vertical.visible ? fontSizes.bar : 0 }
                    radius: Theme.radius
                    color: popup.row === item.index ? Theme.accentVeil : mouse.containsMouse ? Theme.hover : "transparent"
                    border.width: 1
                    border.color: popup.row === item.index ? Theme.focus : "transparent"
                }
                ZTIcon {
                    id: icon

                    anchors { left: parent.left; leftMargin: Theme.normal; verticalCenter: parent.verticalCenter }
                    name: item.modelData.number < 0 ? "plus" : "playlist"
                    color: Theme.dim
                }
                ZTLabel {
                    anchors { left: icon.right; right: parent.right; leftMargin: Theme.normal; rightMargin: fontSizes.bar }
                    height: parent.height
                    text: item.text
                    Accessible.ignored: true
                }
                MouseArea {
                    id: mouse

                    anchors.fill: parent
                    hoverEnabled: true
                    onClicked: {
                        popup.row = item.index
                        popup.take()
                    }
                }
            }
            Keys.onShortcutOverride: (event) => event.accepted = [Qt.Key_Up, Qt.Key_Down, Qt.Key_Home, Qt.Key_End, Qt.Key_PageUp,
                Qt.Key_PageDown, Qt.Key_Return, Qt.Key_Enter].indexOf(event.key) >= 0
            Keys.onPressed: (event) => {
                event.accepted = true
                switch (event.key) {
                case Qt.Key_Up: popup.step(popup.row - 1); return
                case Qt.Key_Down: popup.step(popup.row + 1); return
                case Qt.Key_PageUp: popup.step(popup.row - 9); return
                case Qt.Key_PageDown: popup.step(popup.row + 9); return
                case Qt.Key_Home: popup.step(0); return
                case Qt.Key_End: popup.step(popup.lists.length - 1); return
                case Qt.Key_Return:
                case Qt.Key_Enter: if (!event.isAutoRepeat) popup.take(); return
                }
                event.accepted = false
            }
        }
    }
}
