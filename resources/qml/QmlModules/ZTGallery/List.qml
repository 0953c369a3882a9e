import QtQuick
import ZTCommon 1.0

ZTList {
    width: Theme.scaled(240)
    height: 3 * Theme.rowHeight
    currentIndex: 1
    model: ["First", "Chosen", "Last"]
    delegate: Rectangle {
        id: row

        required property int index
        required property string modelData

        width: ListView.view.width
        height: Theme.rowHeight
        color: ListView.isCurrentItem ? Theme.hoverStrong : "transparent"

        ZTLabel {
            anchors { fill: parent; leftMargin: Theme.normal }
            text: row.modelData
            color: row.ListView.isCurrentItem ? Theme.strong : Theme.text
        }
    }
}
