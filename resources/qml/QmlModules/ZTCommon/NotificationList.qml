import QtQuick
import Tessen 1.0

// Messages with their time, title and details, as lines of plain text; what is acknowledged is dim. Enter acknowledges
// the current one, Ctrl+C copies it.
ZTList {
    id: list

    property NotificationManager manager

    objectName: "NotificationDialog-list"
    focus: true
    activeFocusOnTab: true
    keyNavigationEnabled: true
    highlightMoveDuration: 0
    model: AllNotificationModel { id: all; manager: list.manager }
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Notifications")

    function accept(row) { all.setData(all.index(row, 0), true, NotificationModel.AcceptedRole) }

    // The gravest last: what is shown over the window changes once and not for each.
    function acceptAll() {
        for (let type = Notification.InfoMessage; type <= Notification.ErrorMessage; ++type) {
            for (let row = 0; row < all.rowCount(); ++row) {
                if (all.data(all.index(row, 0), NotificationModel.TypeRole) === type)
                    accept(row)
            }
        }
    }

    function goTo(row) {
        currentIndex = Math.max(0, Math.min(row, count - 1))
        positionViewAtIndex(currentIndex, ListView.Contain)
    }

    function rowsOfPage() {
        const first = indexAt(0, contentY)
        const last = indexAt(0, contentY + height - 1)
        return Math.max(1, (last < 0 ? count - 1 : last) - first)
    }

    Keys.onUpPressed: goTo(currentIndex - 1)
    Keys.onDownPressed: goTo(currentIndex + 1)
    Keys.onPressed: event => {
        event.accepted = true
        if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && currentIndex >= 0)
            accept(currentIndex)
        else if (event.matches(StandardKey.Copy) && currentItem)
            clipboard.take(currentItem.spoken)
        else if (event.key === Qt.Key_Home)
            goTo(0)
        else if (event.key === Qt.Key_End)
            goTo(count - 1)
        else if (event.key === Qt.Key_PageUp)
            goTo(currentIndex - rowsOfPage())
        else if (event.key === Qt.Key_PageDown)
            goTo(currentIndex + rowsOfPage())
        else
            event.accepted = false
    }

    delegate: NotificationRow {
        width: list.width - fontSizes.bar
        isCurrent: ListView.isCurrentItem
        onPicked: {
            list.forceActiveFocus()
            list.currentIndex = index
        }
    }

    TextEdit {
        id: clipboard

        visible: false

        function take(said) {
            text = said
            selectAll()
            copy()
        }
    }
}
