import QtQuick
import QtQml
import ZTCommon 1.0

// The most that transfers may take while program plays.
ZTMenu {
    id: menu

    Instantiator {
        model: [0, 1, 2, 5, 10, 20, 50, 100]
        delegate: ZTMenuItem {
            required property int modelData

            objectName: "transfers-limit-" + modelData
            text: modelData > 0 ? qsTr("%1 MB/s while program plays").arg(modelData) : qsTr("No limit")
            iconName: modelData === fileActions.transferLimit ? "check" : ""
            onTriggered: fileActions.transferLimit = modelData
        }
        onObjectAdded: (index, object) => menu.insertItem(index, object)
        onObjectRemoved: (index, object) => menu.removeItem(object)
    }
}
