import QtQuick
import ZTCommon 1.0

Item {
    width: Theme.scaled(240)
    height: Theme.scaled(48)

    // It takes its size when it opens.
    Connections {
        target: fontSizes
        function onChanged() {
            popup.close()
            Qt.callLater(popup.open)
        }
    }
    Component.onCompleted: Qt.callLater(popup.open)

    ZTPopup {
        id: popup

        margins: 0
        closePolicy: ZTPopup.NoAutoClose
        contentItem: ZTLabel { text: "What a pop-up says" }
    }
}
