import QtQuick
import ZTCommon 1.0

Item {
    width: Theme.scaled(300)
    height: Theme.scaled(150)

    // It takes its size when it opens.
    Connections {
        target: fontSizes
        function onChanged() {
            menu.close()
            Qt.callLater(menu.open)
        }
    }
    Component.onCompleted: Qt.callLater(menu.open)

    ZTMenu {
        id: menu

        margins: 0
        closePolicy: ZTMenu.NoAutoClose

        ZTMenuItem { iconName: "mc_play"; text: "Play on preview"; keys: "Return" }
        ZTMenuItem { iconName: "edit"; text: "Rename"; keys: "F2" }
        ZTMenuSeparator {}
        ZTMenuItem { iconName: "trash"; text: "Clear slot"; enabled: false }
    }
}
