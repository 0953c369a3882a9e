import QtQuick
import QtQml
import ZTCommon 1.0

// The preset paths of a side, and the drives and volumes that are mounted.
ZTMenu {
    id: menu

    property var browser

    onClosed: browser.takeFocus()

    Instantiator {
        model: menu.browser.paths
        delegate: ZTMenuItem {
            text: model.name
            iconName: model.icon
            onTriggered: menu.browser.goTo(model.path)
        }
        onObjectAdded: (index, object) => {
            object.objectName = menu.browser.objectName + "-place" + index
            menu.insertItem(index, object)
        }
        onObjectRemoved: (index, object) => menu.removeItem(object)
    }
    Instantiator {
        model: menu.browser.isLocal && typeof homeLocations !== "undefined" ? homeLocations.homeLocations : []
        delegate: ZTMenuItem {
            text: modelData.name
            iconName: "drive"
            onTriggered: menu.browser.goTo(modelData.path)
        }
        onObjectAdded: (index, object) => menu.addItem(object)
        onObjectRemoved: (index, object) => menu.removeItem(object)
    }
}
