import QtQuick
import ZTCommon 1.0

ZTFrame {
    width: label.implicitWidth + 2 * Theme.loose
    height: label.implicitHeight + 2 * Theme.loose

    ZTLabel {
        id: label

        anchors.centerIn: parent
        text: "On a panel"
    }
}
