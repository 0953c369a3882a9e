import QtQuick
import QtQuick.Templates as T

T.MenuSeparator {
    implicitWidth: 100
    implicitHeight: 9
    topPadding: 4
    bottomPadding: 4

    contentItem: Rectangle {
        implicitHeight: 1
        color: Theme.line
    }
}
