import QtQuick
import ZTCommon 1.0

// The captions of the columns; one that can be sorted by is a button.
Item {
    id: header

    property var browser

    implicitHeight: fontSizes.caption + 2 * fontSizes.padY + 4

    Repeater {
        model: header.browser.columns

        delegate: Item {
            id: cell

            required property string type
            required property string value
            required property int role
            readonly property var place: header.browser.placeOf(type)
            readonly property bool isSorted: header.browser.model && header.browser.model.sortRole === role

            x: place.x
            width: place.width
            height: header.height

            ZTButton {
                id: button

                objectName: header.browser.objectName + "-header-" + cell.type
                anchors.fill: parent
                visible: cell.role > 0
                enabled: header.browser.isUsable
                kind: "flat"
                tip: qsTr("Sort by %1").arg(cell.value.toLowerCase())
                Accessible.name: !cell.isSorted ? cell.value
                               : header.browser.model.isDescending ? qsTr("%1, descending").arg(cell.value)
                                                                   : qsTr("%1, ascending").arg(cell.value)
                onClicked: header.browser.model.sortBy(cell.role)

                contentItem: Item {
                    ZTLabel {
                        id: caption

                        anchors.verticalCenter: parent.verticalCenter
                        x: cell.place.isRight ? parent.width - width - Theme.tight - 2 : Theme.tight + 2
                        width: Math.min(implicitWidth, parent.width - 2 * Theme.tight - arrow.width)
                        text: cell.value
                        color: cell.isSorted ? Theme.strong : Theme.dim
                        font.pixelSize: fontSizes.caption
                        font.weight: Font.Medium
                        Accessible.ignored: true
                    }
                    ZTIcon {
                        id: arrow

                        anchors.verticalCenter: parent.verticalCenter
                        x: cell.place.isRight ? caption.x - width : caption.x + caption.width
                        side: fontSizes.caption + 2
                        name: header.browser.model && header.browser.model.isDescending ? "chevron_down" : "chevron_up"
                        color: Theme.strong
                        visible: cell.isSorted
                    }
                }
            }
        }
    }
    Rectangle {
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: 1
        color: Theme.line
    }
}
