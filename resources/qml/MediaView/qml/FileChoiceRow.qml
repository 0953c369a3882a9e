import QtQuick
import ZTCommon 1.0

// A file or a folder of the server, to be chosen.
Item {
    id: row

    required property int index
    required property var model
    property var chooser: null
    readonly property bool isCurrent: !!chooser && chooser.row === index
    readonly property string text: model.shownName // for who asks what the row shows

    objectName: "media-file-chooser-row" + index
    width: ListView.view ? ListView.view.width : 0
    height: Theme.rowHeight
    Accessible.role: Accessible.ListItem
    Accessible.name: model.isDirectory ? qsTr("%1, folder").arg(model.shownName)
                                       : qsTr("%1, %2").arg(model.shownName).arg(model.sizeText)
    Accessible.selectable: true
    Accessible.selected: isCurrent
    Accessible.focused: isCurrent && !!ListView.view && ListView.view.activeFocus

    Rectangle {
        anchors { fill: parent; leftMargin: 2; rightMargin: fontSizes.bar; topMargin: 1; bottomMargin: 1 }
        radius: Theme.radius
        color: row.isCurrent ? Theme.accentVeil : mouse.containsMouse ? Theme.hover : "transparent"
    }
    Item {
        id: screen

        x: Theme.normal
        width: Math.round(height * 16 / 9)
        height: parent.height

        ZTIcon {
            anchors.centerIn: parent
            visible: row.model.isDirectory
            name: "folder"
        }
        KindIcon {
            anchors.centerIn: parent
            visible: !row.model.isDirectory && picture.status !== Image.Ready
            kind: row.model.mediaType
        }
        Image {
            id: picture

            anchors { fill: parent; margins: 2 }
            sourceSize: Qt.size(width * fontSizes.ratio, height * fontSizes.ratio)
            fillMode: Image.PreserveAspectFit
            source: row.model.isDirectory ? "" : row.model.thumbnail
            cache: false
            visible: status === Image.Ready
        }
    }
    ZTLabel {
        anchors { left: screen.right; right: size.left; leftMargin: Theme.normal; rightMargin: Theme.normal }
        height: parent.height
        text: row.model.shownName
        color: row.isCurrent ? Theme.strong : Theme.text
        elide: Text.ElideMiddle
        Accessible.ignored: true
    }
    ZTLabel {
        id: size

        anchors { right: parent.right; rightMargin: fontSizes.bar + Theme.normal }
        height: parent.height
        text: row.model.isDirectory ? "" : row.model.sizeText
        color: Theme.dim
        Accessible.ignored: true
    }
    MouseArea {
        id: mouse

        anchors.fill: parent
        hoverEnabled: true
        onPressed: {
            row.ListView.view.forceActiveFocus()
            row.chooser.row = row.index
        }
        onDoubleClicked: row.chooser.take()
    }
}
