import QtQuick
import Tessen.Models 1.0
import ZTCommon 1.0

// One operation: what it is, how far it is, and the buttons that end it or try again.
Item {
    id: row

    required property int index
    required property string operationType
    required property string name
    required property string where
    required property string sourceFileSystem
    required property int stage
    required property double progress
    required property string eta
    required property string transferSpeed
    required property string sizeText
    required property string errorText
    required property bool isTransfer
    required property int waitsFor
    required property string outcomeText

    readonly property bool isOpen: !isDone && !isFailed
    readonly property bool isDone: stage === OperationsModel.Done
    readonly property bool isFailed: stage === OperationsModel.Failed
    readonly property bool isBusy: stage === OperationsModel.Running || stage === OperationsModel.Stopping
    readonly property bool isCurrent: ListView.isCurrentItem && ListView.view.activeFocus
    readonly property string text: name + ": " + stageText
    readonly property string waitText: waitsFor === OperationsModel.Server ? qsTr("Waiting for the server")
                                     : waitsFor === OperationsModel.Disk ? qsTr("Waiting for the disk") : ""
    readonly property string stageText: ({ [OperationsModel.Waiting]: waitText !== "" ? waitText : qsTr("Waiting"),
                                           [OperationsModel.Running]: qsTr("Running"),
                                           [OperationsModel.Asking]: qsTr("Asks"), [OperationsModel.Stopping]: qsTr("Stopping"),
                                           [OperationsModel.Done]: outcomeText, [OperationsModel.Failed]: qsTr("Failed") })[stage]
    readonly property bool isUpload: session.localFilesModel !== null
                                     && sourceFileSystem === session.localFilesModel.fileSystem.fileSystemName

    objectName: "transfers-row" + index
    width: ListView.view ? ListView.view.width : 0
    height: Theme.rowHeight
    Accessible.role: Accessible.ListItem
    Accessible.name: qsTr("%1 %2, %3").arg(operationType).arg(name).arg(isBusy ? qsTr("%1 %").arg(Math.round(progress * 100)) : stageText)

    function end() {
        if (isOpen)
            session.operationsModel.cancel(index)
        else
            session.operationsModel.dismiss(index)
    }

    Rectangle {
        anchors { fill: parent; leftMargin: Theme.tight; rightMargin: fontSizes.bar }
        radius: Theme.radius
        color: hover.hovered ? Theme.veil : "transparent"
        border.width: 1
        border.color: row.isCurrent ? Theme.focus : "transparent"

        HoverHandler { id: hover }
    }
    ZTIcon {
        id: icon

        anchors { left: parent.left; leftMargin: Theme.loose; verticalCenter: parent.verticalCenter }
        name: row.isFailed ? "error_small" : row.isDone ? "check" : !row.isTransfer ? (row.operationType === qsTr("Remove") ? "trash" : "folder")
            : row.isUpload ? "upload" : "download"
        color: row.isFailed ? Theme.bad : row.isDone ? Theme.good : row.isBusy ? Theme.strong : Theme.faint
    }
    ZTLabel {
        id: what

        anchors { left: icon.right; leftMargin: Theme.normal; verticalCenter: parent.verticalCenter }
        width: Math.max(0, row.width * 0.4 - icon.width)
        text: row.isTransfer ? qsTr("%1  ›  %2").arg(row.name).arg(row.where === "/" && row.isUpload ? qsTr("Server") : row.where) : qsTr("%1 %2").arg(row.operationType).arg(row.name)
        color: row.isOpen ? Theme.text : Theme.dim
        elide: Text.ElideMiddle
        Accessible.ignored: true
    }
    ZTProgress {
        id: bar

        anchors { left: what.right; leftMargin: Theme.loose; verticalCenter: parent.verticalCenter }
        width: visible ? Theme.scaled(120) : 0
        height: 6
        visible: row.isBusy && row.isTransfer
        value: row.progress
    }
    ZTLabel {
        anchors { left: bar.visible ? bar.right : what.right; right: buttons.left; verticalCenter: parent.verticalCenter }
        anchors { leftMargin: Theme.loose; rightMargin: Theme.normal }
        color: row.isFailed ? Theme.bad : row.stage === OperationsModel.Asking ? Theme.notice : Theme.dim
        text: row.isFailed ? row.errorText
            : row.isBusy ? [qsTr("%1 %").arg(Math.round(row.progress * 100)), row.waitText,
                            row.width < Theme.scaled(900) ? "" : row.sizeText, row.waitsFor ? "" : row.transferSpeed,
                            row.eta.length > 0 && !row.waitsFor ? qsTr("%1 left").arg(row.eta) : ""].filter(part => part.length > 0).join("   ")
            : row.stageText
        Accessible.ignored: true

        HoverHandler {
            onHoveredChanged: hovered && row.isFailed && parent.truncated ? toolTips.show(parent, row.errorText)
                                                                          : toolTips.hide(parent)
        }
    }
    Row {
        id: buttons

        anchors { right: parent.right; rightMargin: Theme.loose; verticalCenter: parent.verticalCenter }
        spacing: 2

        ZTButton {
            objectName: "transfer-" + row.index + "-retry-button"
            implicitHeight: row.height - 2
            kind: "flat"
            iconName: "refresh"
            tip: qsTr("Try again")
            visible: row.isFailed
            onClicked: session.operationsModel.retry(row.index)
        }
        ZTButton {
            objectName: "transfer-" + row.index + "-end-button"
            implicitHeight: row.height - 2
            kind: "flat"
            iconName: "close"
            tip: row.isOpen ? qsTr("Stop") : qsTr("Take out of the list")
            enabled: row.stage !== OperationsModel.Stopping
            onClicked: row.end()
        }
    }
}
