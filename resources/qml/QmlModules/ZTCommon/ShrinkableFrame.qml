import QtQuick

// A panel with a title, buttons beside it and content below, which may shrink to its title.
ZTFrame {
    id: frame

    property string title
    property string iconName
    property bool canShrink: false
    property bool isShrunk: false
    readonly property int titleHeight: bar.height + 2 * Theme.tight
    default property alias content: body.data
    property alias tools: toolRow.data
    readonly property Item toolPlace: toolRow

    Item {
        id: bar

        anchors { left: parent.left; right: parent.right; top: parent.top }
        anchors { leftMargin: Theme.normal; rightMargin: Theme.normal; topMargin: Theme.tight }
        height: Theme.barHeight

        ZTButton {
            id: shrink

            anchors.verticalCenter: parent.verticalCenter
            width: visible ? implicitWidth : 0
            objectName: frame.objectName + "-shrink-button"
            visible: frame.canShrink
            kind: "flat"
            iconName: frame.isShrunk ? "chevron_right" : "chevron_down"
            tip: frame.isShrunk ? qsTr("Show the list") : qsTr("Hide the list")
            onClicked: frame.isShrunk = !frame.isShrunk
        }
        ZTIcon {
            id: icon

            anchors { left: shrink.right; verticalCenter: parent.verticalCenter }
            width: visible ? side : 0
            name: frame.iconName
            color: Theme.dim
            visible: name.length > 0
        }
        ZTLabel {
            anchors { left: icon.right; right: toolRow.left; verticalCenter: parent.verticalCenter }
            anchors { leftMargin: Theme.normal; rightMargin: Theme.normal }
            objectName: frame.objectName + "-title"
            text: frame.title
            color: Theme.strong
            font.weight: Font.DemiBold
        }
        Row {
            id: toolRow

            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            spacing: Theme.tight
        }
    }
    Item {
        id: body

        anchors { left: parent.left; right: parent.right; top: bar.bottom; bottom: parent.bottom }
        anchors { topMargin: Theme.tight; bottomMargin: Theme.tight }
        visible: !frame.isShrunk
    }
}
