import QtQuick
import ZTCommon 1.0

// What a transfer does with what is in its way. It asks here and not in a dialog: nothing of a show may wait for it.
Rectangle {
    id: bar

    implicitHeight: Theme.barHeight + 2 * Theme.tight
    visible: conflictDesk.isAsking
    radius: Theme.radius
    color: Theme.accentVeil
    border.width: 1
    border.color: Theme.accent
    onVisibleChanged: if (visible) forAll.checked = false

    function answer(choice) { fileActions.answerConflict(choice, forAll.checked) }
    function question() {
        const isTop = conflictDesk.place === "/"
        const text = conflictDesk.isDirectory ? (isTop ? qsTr("The folder “%1” is there already")
                                                       : qsTr("The folder “%1” is there already in %2"))
                                              : (isTop ? qsTr("“%1” is there already") : qsTr("“%1” is there already in %2"))
        return isTop ? text.arg(conflictDesk.name) : text.arg(conflictDesk.name).arg(conflictDesk.place)
    }

    ZTLabel {
        anchors { left: parent.left; right: buttons.left; verticalCenter: parent.verticalCenter }
        anchors { leftMargin: Theme.normal; rightMargin: Theme.normal }
        objectName: "conflict-text"
        color: Theme.strong
        elide: Text.ElideMiddle
        text: bar.question()
        Accessible.role: Accessible.AlertMessage
    }
    Row {
        id: buttons

        anchors { right: parent.right; rightMargin: Theme.tight; verticalCenter: parent.verticalCenter }
        spacing: Theme.tight

        ZTCheckBox {
            id: forAll

            objectName: "conflict-forall-checkbox"
            text: qsTr("For all")
            tip: qsTr("The same answer for all that waits now")
        }
        ZTButton {
            objectName: "conflict-replace-button"
            text: conflictDesk.isDirectory ? qsTr("Merge") : qsTr("Replace")
            enabled: !conflictDesk.isDirectory || !forAll.checked // each folder is asked for by itself
            tip: conflictDesk.isDirectory ? qsTr("Put the content of both into one folder; files of the same name are asked for")
                                          : qsTr("Put the new one in its place; the old one is gone")
            onClicked: bar.answer(0)
        }
        ZTButton {
            objectName: "conflict-keepboth-button"
            text: qsTr("Keep both")
            tip: qsTr("Give the new one a name of its own")
            onClicked: bar.answer(1)
        }
        ZTButton {
            objectName: "conflict-skip-button"
            kind: "accent"
            text: qsTr("Skip")
            tip: qsTr("Leave the old one as it is, and the new one out")
            onClicked: bar.answer(2)
        }
        ZTButton {
            objectName: "conflict-stop-button"
            kind: "flat"
            iconName: "close"
            tip: qsTr("Stop this transfer")
            onClicked: bar.answer(3)
        }
    }
}
