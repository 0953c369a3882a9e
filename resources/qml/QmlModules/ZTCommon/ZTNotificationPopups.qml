import QtQuick
import Tessen 1.0

// What most needs the operator now, with the way to its details and the button that acknowledges it. It has no size
// while there is nothing, and asks for no more than mostWidth.
FocusScope {
    id: popups

    property NotificationManager manager
    property QtObject dialog
    property QtObject host
    property int stay: 6000
    property int mostWidth: 800
    readonly property string spoken: qsTr("%1: %2").arg(notificationStyle.name(type)).arg(title.text)
    property int type: Notification.InfoMessage
    property bool isShown: false
    property bool isOther: false
    readonly property bool mayLeave: isShown && type !== Notification.ErrorMessage && !hover.hovered

    onMayLeaveChanged: mayLeave ? leave.start() : leave.stop()

    // Without the row's own, which counts what has changed only once somebody sees it.
    readonly property real beside: mark.width + details.width + ok.width + 3 * row.spacing + 24

    implicitWidth: isShown ? Math.min(mostWidth, Math.ceil(title.implicitWidth + beside)) : 0
    implicitHeight: isShown ? Theme.barHeight + 16 : 0
    focus: true
    Accessible.role: Accessible.AlertMessage
    Accessible.name: spoken

    function turn() {
        isOther = true
        Qt.callLater(present)
    }

    // Once for all that is said in one turn.
    function present() {
        const row = pending.index(0, 0)
        if (row.valid) {
            type = pending.data(row, NotificationModel.TypeRole)
            title.text = notificationStyle.plainTitle(pending.data(row, NotificationModel.TitleRole),
                                                      pending.data(row, NotificationModel.RepeatsRole))
        }
        isShown = row.valid
        isOther = false
        mayLeave ? leave.restart() : leave.stop()
    }

    // Only what has been in sight.
    function accept() {
        if (!isOther)
            pending.setData(pending.index(0, 0), true, NotificationModel.AcceptedRole)
    }

    PendingNotificationModel {
        id: pending

        manager: popups.manager
        onRowsInserted: popups.turn()
        onRowsRemoved: popups.turn()
        onDataChanged: Qt.callLater(popups.present)
    }
    Binding {
        target: popups.host
        property: "accessibleName"
        value: popups.spoken
    }
    HoverHandler {
        id: hover
    }
    Timer {
        id: leave

        interval: popups.stay
        // What is done needs nobody; a warning waits in the status bar for somebody to look.
        onTriggered: popups.type === Notification.WarningMessage ? pending.passOver() : popups.accept()
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.panelRadius
        color: Theme.raised
        border.width: 1
        border.color: Theme.outline
    }
    Row {
        id: row

        anchors { left: parent.left; leftMargin: 16; verticalCenter: parent.verticalCenter }
        spacing: Theme.normal

        ZTIcon {
            id: mark

            anchors.verticalCenter: parent.verticalCenter
            name: notificationStyle.icon(popups.type)
            color: notificationStyle.color(popups.type)
        }
        ZTLabel {
            id: title

            objectName: "NotificationPresenter-title"
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, popups.mostWidth - popups.beside)

            HoverHandler {
                onHoveredChanged: hovered && title.truncated ? toolTips.show(title, title.text) : toolTips.hide(title)
            }
        }
        ZTButton {
            id: details

            objectName: "NotificationPresenter-details-button"
            kind: "flat"
            text: qsTr("DETAILS")
            onClicked: if (popups.dialog) popups.dialog.show()
        }
        ZTButton {
            id: ok

            objectName: "NotificationPresenter-accept-button"
            focus: true
            text: qsTr("OK")
            onClicked: popups.accept()
        }
    }
}
