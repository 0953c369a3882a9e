import QtQuick
import ZTCommon 1.0

// The buttons of a side, beside its title.
Row {
    id: tools

    property var browser

    spacing: Theme.tight

    ZTButton {
        objectName: tools.browser.objectName + "-refresh-button"
        kind: "flat"
        iconName: "refresh"
        tip: qsTr("Read the folder again (F5)")
        enabled: tools.browser.isUsable
        onClicked: tools.browser.refresh()
    }
    ZTButton {
        objectName: tools.browser.objectName + "-newfolder-button"
        kind: "flat"
        iconName: "folder_new"
        tip: qsTr("New folder (Ctrl+Shift+N)")
        enabled: tools.browser.canCreate
        onClicked: tools.browser.askNewFolder()
    }
    ZTButton {
        objectName: tools.browser.objectName + "-remove-button"
        kind: "flat"
        iconName: "trash"
        tip: qsTr("Remove what is selected (Delete)")
        enabled: tools.browser.canChange
        onClicked: tools.browser.askRemove()
    }
    ZTButton {
        readonly property string caption: tools.browser.isLocal ? qsTr("Copy to server") : qsTr("Copy to local")

        objectName: tools.browser.objectName + "-copy-button"
        kind: enabled ? "accent" : ""
        iconName: tools.browser.isLocal ? "upload" : "download"
        Accessible.name: caption
        text: tools.browser.width < Theme.scaled(350) ? "" : caption
        tip: !tools.browser.other.isUsable ? qsTr("The other side is not there")
           : tools.browser.selectedCount === 0 ? qsTr("Select what to copy first")
           : tools.browser.isLocal ? qsTr("Copy what is selected to the folder of the server (Ctrl+Right)")
                                   : qsTr("Copy what is selected to the local folder (Ctrl+Left)")
        enabled: tools.browser.canSend
        onClicked: tools.browser.send(false)
    }
}
