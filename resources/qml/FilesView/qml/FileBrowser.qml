import QtQuick
import Tessen.Models 1.0
import ZTCommon 1.0

// One side: the way to a folder, its content, and what can be done with it by mouse and keyboard.
FocusScope {
    id: browser

    property var view
    property var model: null
    property var paths
    property var other
    property bool isLocal: false
    property var columns
    property alias selection: selection

    readonly property bool isUsable: model !== null
    readonly property bool isTop: isUsable && model.isAtTop
    readonly property bool hasKeys: list.activeFocus
    readonly property int selectedCount: selection.selectedCount
    readonly property bool canCreate: isUsable && !isTop
    readonly property bool canChange: isUsable && !isTop && selectedCount > 0
    readonly property bool canRename: canChange && selectedCount === 1
    readonly property bool canSend: canChange && other.isUsable && !other.isTop
    readonly property bool canPaste: canCreate && view.clip !== null && isHere(view.clip.source)
    readonly property bool canOpen: isUsable && selectedCount === 1 && model.get(selection.rows()[0]).isDirectory === true
    // Of the files: what folders hold is not known.
    readonly property string selectedSize: {
        const bytes = selectedCount > 0 ? (selection.revision, model.bytesOf(selection.rows())) : 0
        return bytes > 0 ? fileActions.sizeText(bytes) : ""
    }
    readonly property int operationsRevision: session.operationsModel ? session.operationsModel.revision : 0
    property string renamingName // by name: a row may come to stand above it meanwhile
    property int dropRow: -1
    readonly property var textColumns: isLocal ? ["type", "size"] : ["duration", "type", "size"]

    // Where the columns stand; on a narrow side the kind goes first.
    readonly property var places: {
        const all = {}
        const room = width - fontSizes.bar - Theme.normal
        let fixed = 0
        for (let i = 0; i < columns.count; ++i) {
            const column = columns.get(i)
            if (column.type !== "name")
                fixed += Theme.scaled(column.width)
        }
        const drops = room - fixed < Theme.scaled(170)
        let rest = room - fixed
        if (drops)
            rest += Theme.scaled(70)
        let x = Theme.tight
        for (let i = 0; i < columns.count; ++i) {
            const column = columns.get(i)
            const wide = column.type === "name" ? rest : drops && column.type === "type" ? 0
                                                                                          : Theme.scaled(column.width)
            all[column.type] = { x: x, width: wide, isRight: column.type !== "name" && column.type !== "thumbnail" }
            x += wide
        }
        return all
    }

    function placeOf(type) { return places[type] }
    function takeFocus() { list.forceActiveFocus() }
    function progressOf(path) {
        return session.operationsModel && isUsable ? session.operationsModel.progressAt(model.fileSystem, path) : -1
    }
    function goTo(path) {
        if (isUsable)
            model.directoryPath = path
    }
    function goUp() {
        if (!isUsable || model.parentPath.length === 0)
            return
        comingFrom = model.directoryPath
        goTo(model.parentPath)
    }
    function refresh() { model.refresh() }
    function openRow(row) {
        const item = model.get(row)
        if (item.isDirectory)
            goTo(item.absolutePath)
        else if (canSend)
            send(false)
    }
    function openCurrent() {
        if (selection.currentRow >= 0)
            openRow(selection.currentRow)
    }
    function send(moves) {
        if (!canSend)
            return
        const mime = model.mimeOf(selection.rows())
        tell(moves ? fileSystemDropHandler.moveMimeData(mime, other.model.fileSystem, other.model.directoryPath)
                   : fileSystemDropHandler.dropMimeData(mime, other.model.fileSystem, other.model.directoryPath))
    }
    function copy() {
        if (canChange)
            view.clip = { mime: model.mimeOf(selection.rows()), source: model.fileSystem }
    }
    // Another server may have files under the same paths.
    function isHere(source) {
        return source === model.fileSystem || (other.isUsable && source === other.model.fileSystem)
    }
    function paste() {
        if (canPaste)
            tell(fileSystemDropHandler.copyMimeData(view.clip.mime, model.fileSystem, model.directoryPath))
    }
    function say(text) {
        refused.text = text
        refusedTimer.restart()
    }
    // A drop is taken whole or not at all.
    function tell(isTaken) {
        if (!isTaken)
            say(qsTr("Nothing was copied: a part of it is not there any more, or its disk does not answer. F5 reads the folder again."))
    }
    function startDrag() {
        fileActions.startDrag(model, selection.rows())
    }
    function openMenu(at) {
        if (!menu.item)
            menu.active = true
        menu.item.popup(browser, at.x, at.y)
    }
    function nameFault(name, kept) {
        const text = name.trim()
        if (text.length === 0)
            return qsTr("It needs a name.")
        if (text === "." || text === ".." || text.indexOf("/") >= 0)
            return qsTr("A name cannot hold “/”, nor be “.” or “..”.")
        if (text !== kept && model.rowOf(text) >= 0)
            return qsTr("“%1” is there already.").arg(text)
        return ""
    }
    function askNewFolder() {
        if (!canCreate)
            return
        const dialog = dialogs.openTextInputDialog(qsTr("New folder"), qsTr("Name"), qsTr("CREATE"))
        const target = model
        const directory = model.directoryPath // the model may be elsewhere by then
        dialog.valuesConfirmed.connect(function(values) {
            const fault = browser.nameFault(values[0], "")
            if (fault.length > 0)
                dialogs.openErrorDialog(qsTr("No new folder"), fault)
            else if (browser.model === target)
                fileSystemOperations.operationsProvider.createDirectory(target.fileSystem, directory + values[0].trim())
        })
    }
    function startRename() {
        if (canRename)
            renamingName = model.get(selection.rows()[0]).name
    }
    function finishRename(name) {
        const row = renamingName.length > 0 ? model.rowOf(renamingName) : -1
        renamingName = ""
        if (row < 0)
            return
        const item = model.get(row)
        takeFocus()
        if (name.length === 0 || name === item.name || name.trim() === item.name)
            return
        const fault = nameFault(name, item.name)
        if (fault.length > 0)
            dialogs.openErrorDialog(qsTr("The name stays"), fault)
        else
            fileSystemOperations.operationsProvider.rename(model.fileSystem, item.absolutePath, name.trim())
    }
    function askRemove() {
        if (!canChange)
            return
        const rows = selection.rows()
        const first = model.get(rows[0])
        const what = rows.length > 1 ? qsTr("%n items", "", rows.length)
                   : first.isDirectory ? qsTr("the folder “%1” and all that is in it").arg(first.shownName)
                                       : qsTr("“%1”").arg(first.shownName)
        const where = isLocal ? qsTr("this computer") : qsTr("the server")
        const paths = rows.map(row => model.get(row).absolutePath)
        const target = model.fileSystem
        const dialog = dialogs.openConfirmationDialog(
            qsTr("Remove"), qsTr("Removes %1 from %2. This cannot be undone.").arg(what).arg(where), qsTr("REMOVE"))
        dialog.setObjectNames("RemoveFilesDialog")
        dialog.confirmed.connect(function() {
            for (const path of paths)
                fileSystemOperations.operationsProvider.remove(target, path)
        })
    }
    function step(to, modifiers) {
        if (!isUsable || model.count === 0)
            return
        const row = Math.max(0, Math.min(model.count - 1, to))
        if ((modifiers & Qt.ControlModifier) && !(modifiers & Qt.ShiftModifier))
            selection.moveTo(row)
        else
            selection.pick(row, modifiers & Qt.ShiftModifier)
        list.positionViewAtIndex(row, ListView.Contain)
    }

    // The folder that the way up leaves: it is the current row there.
    property string comingFrom

    ZTSelectionModel {
        id: selection

        rowModel: browser.model
    }
    Connections {
        target: browser.model

        function onDirectoryPathChanged() {
            browser.renamingName = ""
            list.positionViewAtBeginning()
        }
        function onCountChanged() {
            if (browser.comingFrom.length === 0 || browser.model.count === 0)
                return
            for (let row = 0; row < Math.min(browser.model.count, 500); ++row) {
                if (browser.model.get(row).absolutePath === browser.comingFrom) {
                    browser.selection.pick(row, 0)
                    list.positionViewAtIndex(row, ListView.Center)
                    break
                }
            }
            browser.comingFrom = ""
        }
        function onPathRefused(path) {
            browser.say(qsTr("%1 cannot be opened.").arg(path))
        }
    }
    Timer {
        id: refusedTimer

        interval: 6000
        onTriggered: refused.text = ""
    }
    Timer {
        id: typed

        property string text

        interval: 1000
        onTriggered: text = ""
    }
    Timer {
        id: patience

        running: browser.isUsable && browser.model.isWaiting
        interval: 300
        property bool isOver: false
        onRunningChanged: isOver = false
        onTriggered: isOver = true
    }

    PathBar {
        id: path

        anchors { left: parent.left; right: parent.right; top: parent.top }
        anchors { leftMargin: Theme.tight; rightMargin: Theme.normal }
        browser: browser
    }
    FileHeader {
        id: header

        anchors { left: parent.left; right: parent.right; top: path.bottom; topMargin: 2 }
        browser: browser
    }
    ZTList {
        id: list

        property var browser: browser

        objectName: browser.objectName + "-list"
        anchors { left: parent.left; right: parent.right; top: header.bottom; bottom: footer.top }
        anchors { topMargin: 2; bottomMargin: 2 }
        focus: true
        activeFocusOnTab: true
        model: browser.model
        currentRow: selection.currentRow
        delegate: FileRow { browser: list.browser }
        Accessible.role: Accessible.List
        Accessible.name: browser.isLocal ? qsTr("Local files") : qsTr("Server files")
        onActiveFocusChanged: if (activeFocus && selection.currentRow < 0 && count > 0) selection.moveTo(0)

        Keys.onShortcutOverride: (event) => event.accepted = keys.isOurs(event)
        Keys.onPressed: (event) => event.accepted = keys.press(event)

        FileKeys {
            id: keys

            browser: list.browser
            list: list
            typed: typed
            path: path
        }
    }
    MouseArea {
        // The empty part of the list, and what is below its rows; the list itself would keep a press there.
        parent: list.contentItem
        width: list.width
        height: Math.max(list.height, list.contentHeight)
        z: -1
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        onPressed: (event) => {
            browser.takeFocus()
            selection.clearSelection()
            if (event.button === Qt.RightButton)
                browser.openMenu(mapToItem(browser, event.x, event.y))
        }
    }
    DropArea {
        id: drops

        anchors.fill: list

        function isOurs(drop) {
            return browser.canCreate && (drop.formats.indexOf("application/json") >= 0 || drop.hasUrls)
        }
        function rowAt(drop) {
            const row = list.indexAt(drop.x, drop.y + list.contentY)
            return row >= 0 && browser.model.get(row).isDirectory ? row : -1
        }
        onEntered: (drag) => drag.accepted = isOurs(drag)
        onPositionChanged: (drag) => {
            drag.accepted = isOurs(drag)
            browser.dropRow = rowAt(drag)
        }
        onExited: browser.dropRow = -1
        onDropped: (drop) => {
            const row = rowAt(drop)
            const target = row >= 0 ? browser.model.get(row).absolutePath : browser.model.directoryPath
            browser.dropRow = -1
            if (!isOurs(drop))
                return
            drop.accept(Qt.CopyAction)
            browser.tell(fileActions.drop(drop.formats.indexOf("application/json") >= 0
                                          ? { "application/type": drop.getDataAsString("application/type"),
                                              "application/json": drop.getDataAsString("application/json") } : {},
                                          drop.urls, browser.model, target))
        }
    }
    Rectangle {
        anchors.fill: list
        anchors.margins: 1
        visible: drops.containsDrag && browser.dropRow < 0
        color: "transparent"
        radius: Theme.radius
        border.width: 2
        border.color: Theme.accent
    }
    Rectangle {
        // Where the keys go, also in a folder without a row that could say so.
        anchors.fill: list
        visible: list.activeFocus && list.count === 0
        color: "transparent"
        radius: Theme.radius
        border.width: 1
        border.color: Theme.focus
    }
    Column {
        id: empty

        anchors.centerIn: list
        width: Math.min(list.width - 2 * Theme.loose, Theme.scaled(380))
        spacing: Theme.loose
        visible: words.title.length > 0

        ZTEmptyState {
            id: words

            width: parent.width
            iconName: list.height < Theme.scaled(170) ? "" : !browser.isUsable ? "unlinked"
                    : browser.model.isWaiting ? "" : "folder_open"
            title: !browser.isUsable ? qsTr("No files of a server")
                 : list.count > 0 ? ""
                 : browser.model.isWaiting ? (patience.isOver ? qsTr("Reading the folder ...") : "")
                 : qsTr("No media files here")
            text: !browser.isUsable ? qsTr("They show here once a server that serves its files is connected.")
                : list.count > 0 || browser.model.isWaiting ? browser.waitingText()
                : browser.isTop ? qsTr("No drive is mounted.")
                : browser.isLocal ? qsTr("Folders, videos, sound and pictures show here.")
                                  : qsTr("Drag files and folders here from the left, or select them there and press Copy to server.")
        }
        ZTButton {
            objectName: browser.objectName + "-connect-button"
            anchors.horizontalCenter: parent.horizontalCenter
            visible: !browser.isUsable && mainWindow !== null
            kind: "accent"
            iconName: "linked"
            text: qsTr("Connect to server")
            tip: qsTr("Choose a server to connect to")
            onClicked: mainWindow.handleConnectRequest()
        }
    }
    function waitingText() {
        if (list.count > 0 || !patience.isOver || isLocal)
            return ""
        return model.fileSystem.isReady ? qsTr("The server is asked for it; a running transfer goes first.")
                                        : qsTr("The server's files cannot be reached; trying again.")
    }
    Item {
        id: footer

        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        anchors { leftMargin: Theme.loose; rightMargin: Theme.loose }
        height: summary.implicitHeight + 4

        ZTLabel {
            id: refused

            anchors { left: parent.left; right: parent.right }
            visible: text.length > 0
            font.pixelSize: fontSizes.caption
            color: Theme.notice
            elide: Text.ElideMiddle
        }
        ZTLabel {
            id: summary

            objectName: browser.objectName + "-summary"
            anchors { left: parent.left; right: parent.right }
            visible: refused.text.length === 0
            font.pixelSize: fontSizes.caption
            color: Theme.dim
            text: !browser.isUsable ? ""
                : browser.selectedCount > 0
                  ? [qsTr("%1 of %2 selected").arg(browser.selectedCount).arg(list.count), browser.selectedSize]
                        .filter(part => part.length > 0).join(", ")
                  : list.count === 1 ? qsTr("1 item") : qsTr("%1 items").arg(list.count)
        }
    }
    Loader {
        id: menu

        active: false
        sourceComponent: FileMenu {
            parent: browser
            browser: menu.parent
        }
    }
}
