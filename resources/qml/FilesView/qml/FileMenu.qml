import QtQuick
import ZTCommon 1.0

// What can be done with what is selected.
ZTMenu {
    id: menu

    property var browser

    objectName: browser.objectName + "-menu"
    onClosed: browser.takeFocus()

    ZTMenuItem {
        objectName: menu.browser.objectName + "-menu-open"
        text: qsTr("Open")
        iconName: "folder_open"
        keys: qsTr("Enter")
        enabled: menu.browser.canOpen
        onTriggered: menu.browser.openCurrent()
    }
    ZTMenuItem {
        objectName: menu.browser.objectName + "-menu-copy"
        text: menu.browser.isLocal ? qsTr("Copy to server") : qsTr("Copy to local")
        iconName: menu.browser.isLocal ? "upload" : "download"
        keys: menu.browser.isLocal ? qsTr("Ctrl+Right") : qsTr("Ctrl+Left")
        enabled: menu.browser.canSend
        onTriggered: menu.browser.send(false)
    }
    ZTMenuItem {
        objectName: menu.browser.objectName + "-menu-move"
        text: menu.browser.isLocal ? qsTr("Move to server") : qsTr("Move to local")
        iconName: menu.browser.isLocal ? "upload" : "download"
        enabled: menu.browser.canSend
        onTriggered: menu.browser.send(true)
    }
    ZTMenuSeparator {}
    ZTMenuItem {
        objectName: menu.browser.objectName + "-menu-take"
        text: qsTr("Copy")
        iconName: "copy"
        keys: qsTr("Ctrl+C")
        enabled: menu.browser.canChange
        onTriggered: menu.browser.copy()
    }
    ZTMenuItem {
        objectName: menu.browser.objectName + "-menu-paste"
        text: qsTr("Paste")
        iconName: "paste"
        keys: qsTr("Ctrl+V")
        enabled: menu.browser.canPaste
        onTriggered: menu.browser.paste()
    }
    ZTMenuItem {
        objectName: menu.browser.objectName + "-menu-rename"
        text: qsTr("Rename")
        iconName: "edit"
        keys: qsTr("F2")
        enabled: menu.browser.canRename
        onTriggered: Qt.callLater(menu.browser.startRename) // once the menu has given the keys back
    }
    ZTMenuItem {
        objectName: menu.browser.objectName + "-menu-remove"
        text: qsTr("Remove")
        iconName: "trash"
        keys: qsTr("Delete")
        enabled: menu.browser.canChange
        onTriggered: menu.browser.askRemove()
    }
    ZTMenuSeparator {}
    ZTMenuItem {
        objectName: menu.browser.objectName + "-menu-newfolder"
        text: qsTr("New folder")
        iconName: "folder_new"
        keys: qsTr("Ctrl+Shift+N")
        enabled: menu.browser.canCreate
        onTriggered: menu.browser.askNewFolder()
    }
}
