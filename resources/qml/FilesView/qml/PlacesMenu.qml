import QtQuick
import QtQml
import ZTCommon 1.0

// The preset paths of a side, and the drives and volumes that are mounted.
ZTMenu {
    id: menu

    property var browser

    Instantiator {
        model: menu.browser.paths
        delegate: ZTMenuItem {
            required property string name
            required property string path
            required property string icon

            text: name
            iconName: icon
            onTriggered: menu.browser.goTo(path)
        }
        onObjectAdded: (index, object) => menu.insertItem(index, object)
        onObjectRemoved: (index, object) => menu.removeItem(object)
    }
    Instantiator {
        model: menu.browser.isLocal && typeof homeLocations !== "undefined" ? homeLocations.homeLocations : []
        delegate: ZTMenuItem {
            required property var modelData

            text: modelData.name
            iconName: "drive"
            onTriggered: menu.browser.goTo(modelData.path)
        }
        onObjectAdded: (index, object) => menu.addItem(object)
        onObjectRemoved: (index, object) => menu.removeItem(object)
    }
}
