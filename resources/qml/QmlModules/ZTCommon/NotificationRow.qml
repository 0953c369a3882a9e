import QtQuick

// A message in the list of all of them.
Item {
    id: row

    required property int index
    required property int type
    required property string title
    required property string details
    required property date dateTime
    required property bool accepted
    required property int repeats
    property bool isCurrent: false
    readonly property string spoken: qsTr("%1, %2: %3\n%4").arg(time.text).arg(notificationStyle.name(type))
        .arg(headline.text).arg(lines.text).trim()

    signal picked()

    implicitHeight: Math.ceil(texts.implicitHeight) + 16
    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.selected: isCurrent

    Rectangle {
        anchors { fill: parent; margins: 2 }
        radius: Theme.radius
        color: row.isCurrent ? Theme.accentVeil : hover.hovered ? Theme.veil : "transparent"
    }
    HoverHandler {
        id: hover
    }
    TapHandler {
        onTapped: row.picked()
    }
    ZTIcon {
        id: mark

        x: Theme.normal
        y: Theme.normal
        side: time.implicitHeight
        name: notificationStyle.icon(row.type)
        color: notificationStyle.color(row.type)
        opacity: row.accepted ? 0.6 : 1
    }
    ZTLabel {
        id: time

        anchors { left: mark.right; leftMargin: Theme.normal; top: mark.top }
        color: Theme.dim
        text: Qt.formatTime(row.dateTime, "HH:mm:ss")
        Accessible.ignored: true
    }
    Column {
        id: texts

        anchors { left: time.right; leftMargin: Theme.normal; right: parent.right; rightMargin: Theme.loose
                  top: mark.top }
        spacing: 2

        ZTLabel {
            id: headline

            width: parent.width
            wrapMode: Text.Wrap
            font.weight: Font.DemiBold
            color: row.accepted ? Theme.dim : Theme.strong
            text: notificationStyle.plainTitle(row.title, row.repeats)
            Accessible.ignored: true
        }
        ZTLabel {
            id: lines

            width: parent.width
            wrapMode: Text.Wrap
            visible: text.length > 0
            color: row.accepted ? Theme.dim : Theme.text
            text: notificationStyle.plainText(row.details)
            Accessible.ignored: true
        }
    }
}
