import QtQuick
import QtQuick.Templates as T
import ZTCommon 1.0

// The server's files, one of which takes the place of what some slots play.
T.Popup {
    id: chooser

    readonly property var files: fileChoice.files
    property int row: -1
    property string comingFrom // the folder that the way up leaves
    readonly property bool isFolder: row >= 0 && files !== null && files.get(row).isDirectory === true
    property int revision: 0 // of what is known of the files
    readonly property string fault: row >= 0 && files !== null ? (revision, fileChoice.faultOf(row)) : ""

    function begin(file) {
        if (!fileChoice.begin(file)) {
            dialogs.openErrorDialog(qsTr("No files"), qsTr("The server shows no files now. Try again once it is connected."))
            return
        }
        open()
        list.forceActiveFocus()
        settle()
    }
    // On the file itself, the folder that was left, or the first.
    function settle() {
        if (row >= 0 || files === null || files.count === 0)
            return
        const name = comingFrom !== "" ? comingFrom.split("/").filter(part => part !== "").pop() : fileChoice.lost
        comingFrom = ""
        step(Math.max(0, files.rowOf(name)))
    }
    function goTo(path) { files.directoryPath = path }
    function goUp() {
        if (files.parentPath.length === 0)
            return
        comingFrom = files.directoryPath
        goTo(files.parentPath)
    }
    function step(to) {
        if (files === null || files.count === 0)
            return
        row = Math.max(0, Math.min(files.count - 1, to))
        list.positionViewAtIndex(row, ListView.Contain)
    }
    function take() {
        if (row < 0 || fault !== "")
            return
        if (isFolder)
            goTo(files.get(row).absolutePath)
        else
            fileChoice.choose(row)
    }

    objectName: "media-file-chooser"
    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(Theme.scaled(620), parent ? parent.width - 2 * Theme.loose : 0)
    height: Math.min(Theme.scaled(520), parent ? parent.height - 2 * Theme.loose : 0)
    padding: Theme.loose
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    onClosed: fileChoice.end()
    onFilesChanged: row = -1
    T.Overlay.modal: Rectangle { color: Theme.shade }

    Connections {
        target: chooser.files

        function onDirectoryPathChanged() { chooser.row = -1 }
        function onDataChanged() { ++chooser.revision }
        function onCountChanged() { chooser.settle() }
    }
    Connections {
        target: fileChoice

        function onChosen() { chooser.close() }
    }
    Connections {
        target: mediaActions

        function onLibraryChanged() {
            if (!mediaActions.isConnected)
                chooser.close()
        }
    }
    Timer {
        id: typed

        property string text

        interval: 1000
        onTriggered: text = ""
    }

    background: Rectangle {
        color: Theme.panel
        radius: Theme.panelRadius
        border.width: 1
        border.color: Theme.outline
    }
    contentItem: Item {
        ZTLabel {
            id: title

            anchors { left: parent.left; right: parent.right; top: parent.top }
            text: qsTr("Another file for “%1”").arg(fileChoice.lost)
            color: Theme.strong
            font.pixelSize: fontSizes.title
            font.weight: Font.DemiBold
            elide: Text.ElideMiddle
        }
        ZTLabel {
            id: told

            objectName: "media-file-chooser-text"
            anchors { left: parent.left; right: parent.right; top: title.bottom; topMargin: Theme.tight }
            text: fileChoice.slotCount === 1 ? qsTr("One slot plays it.")
                                             : qsTr("%1 slots play it; all of them will play the other one.").arg(fileChoice.slotCount)
            color: Theme.dim
            wrapMode: Text.Wrap
        }
        ZTButton {
            id: up

            objectName: "media-file-chooser-up-button"
            anchors { left: parent.left; top: told.bottom; topMargin: Theme.normal }
            kind: "flat"
            iconName: "arrow_up"
            tip: qsTr("To the folder above (Backspace)")
            enabled: chooser.files !== null && chooser.files.parentPath.length > 0
            onClicked: chooser.goUp()
        }
        ZTLabel {
            anchors { left: up.right; right: parent.right; verticalCenter: up.verticalCenter; leftMargin: Theme.normal }
            text: chooser.files !== null ? chooser.files.directoryPath : ""
            elide: Text.ElideLeft
        }
        Rectangle {
            anchors.fill: list
            color: Theme.field
            radius: Theme.radius
            border.width: 1
            border.color: list.activeFocus ? Theme.focus : "transparent"
        }
        ZTList {
            id: list

            objectName: "media-file-chooser-list"
            anchors { left: parent.left; right: parent.right; top: up.bottom; bottom: why.top }
            anchors { topMargin: Theme.tight; bottomMargin: Theme.tight }
            activeFocusOnTab: true
            focus: true
            model: chooser.files
            currentRow: chooser.row
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Server files")
            delegate: FileChoiceRow { chooser: list.chooser }
            property var chooser: chooser

            function isText(event) {
                return event.text.length > 0 && event.text.charCodeAt(0) >= 32 && event.text.charCodeAt(0) !== 127
                       && !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier))
            }
            Keys.onShortcutOverride: (event) => event.accepted = isText(event)
                || [Qt.Key_Up, Qt.Key_Down, Qt.Key_PageUp, Qt.Key_PageDown, Qt.Key_Home, Qt.Key_End,
                    Qt.Key_Backspace, Qt.Key_Return, Qt.Key_Enter].indexOf(event.key) >= 0
            Keys.onPressed: (event) => {
                const page = Math.max(1, Math.floor(list.height / Theme.rowHeight))
                event.accepted = true
                switch (event.key) {
                case Qt.Key_Up: chooser.step(chooser.row - 1); return
                case Qt.Key_Down: chooser.step(chooser.row + 1); return
                case Qt.Key_PageUp: chooser.step(chooser.row - page); return
                case Qt.Key_PageDown: chooser.step(chooser.row + page); return
                case Qt.Key_Home: chooser.step(0); return
                case Qt.Key_End: chooser.step(chooser.files.count - 1); return
                case Qt.Key_Backspace: chooser.goUp(); return
                case Qt.Key_Return:
                case Qt.Key_Enter: if (!event.isAutoRepeat) chooser.take(); return
                }
                event.accepted = isText(event)
                if (!event.accepted)
                    return
                typed.text += event.text
                typed.restart()
                const found = chooser.files.findRow(typed.text, Math.max(0, chooser.row))
                if (found >= 0)
                    chooser.step(found)
            }
        }
        ZTEmptyState {
            anchors.centerIn: list
            width: list.width - 2 * Theme.loose
            visible: list.count === 0 && chooser.files !== null && !chooser.files.isWaiting
            iconName: "folder_open"
            title: qsTr("No media files here")
        }
        ZTLabel {
            id: why

            objectName: "media-file-chooser-fault"
            anchors { left: parent.left; right: parent.right; bottom: buttons.top; bottomMargin: Theme.normal }
            height: fontSizes.body * 2 + Theme.normal // room for two lines, so that nothing jumps
            text: fileChoice.isBusy ? qsTr("Looking for the pictures of this sequence ...") : chooser.fault
            color: fileChoice.isBusy ? Theme.text : Theme.bad
            wrapMode: Text.Wrap
            maximumLineCount: 2
        }
        Row {
            id: buttons

            anchors { right: parent.right; bottom: parent.bottom }
            spacing: Theme.normal

            ZTButton {
                objectName: "media-file-chooser-cancel-button"
                text: qsTr("Cancel")
                tip: qsTr("Everything stays as it is (Esc)")
                onClicked: chooser.close()
            }
            ZTButton {
                objectName: "media-file-chooser-take-button"
                kind: "accent"
                text: chooser.isFolder ? qsTr("Open folder") : qsTr("Use this file")
                tip: chooser.isFolder ? qsTr("Shows what is in it (Enter)") : qsTr("It can be undone (Enter)")
                enabled: !fileChoice.isBusy && chooser.row >= 0 && chooser.fault === "" && mediaActions.isEditable
                onClicked: chooser.take()
            }
        }
    }
}
