import QtQuick
import QtQuick.Templates as T
import ZTCommon 1.0

// The FILES tab: this computer on the left, the server on the right, what is on its way below.
ZTQMLWidget {
    id: view

    objectName: "FilesView"

    // What Ctrl+C took up: {mime, source}.
    property var clip: null
    readonly property int leastSide: Math.min(500, Math.floor((width - Theme.normal) / 2))

    ZTSplitView {
        anchors.fill: parent
        orientation: Qt.Vertical

        ZTSplitView {
            T.SplitView.fillHeight: true
            T.SplitView.minimumHeight: 160
            orientation: Qt.Horizontal

            ShrinkableFrame {
                id: localPanel

                objectName: "local-files-panel"
                title: qsTr("Local files")
                iconName: "drive"
                T.SplitView.minimumWidth: view.leastSide
                T.SplitView.preferredWidth: (view.width - Theme.normal) / 2
                tools: FileTools { browser: localBrowser }

                FileBrowser {
                    id: localBrowser

                    objectName: "local-files"
                    anchors.fill: parent
                    focus: true
                    view: view
                    model: session.localFilesModel
                    paths: session.localFilesPathModel
                    other: serverBrowser
                    isLocal: true
                    columns: LocalFilesColumnModel {}
                }
            }
            ShrinkableFrame {
                objectName: "server-files-panel"
                title: qsTr("Server files")
                iconName: "linked"
                T.SplitView.minimumWidth: view.leastSide
                T.SplitView.fillWidth: true
                tools: FileTools { browser: serverBrowser }

                FileBrowser {
                    id: serverBrowser

                    objectName: "server-files"
                    anchors.fill: parent
                    view: view
                    model: session.serverFilesModel
                    paths: session.serverFilesPathModel
                    other: localBrowser
                    columns: ServerFilesColumnModel {}
                }
            }
        }
        TransferPanel {
            id: transfers

            T.SplitView.preferredHeight: isShrunk ? titleHeight
                                       : operations && operations.count > 0 ? Math.min(view.height * 0.28, Theme.scaled(190))
                                                                            : T.SplitView.minimumHeight
            T.SplitView.minimumHeight: isShrunk ? titleHeight : titleHeight + Theme.rowHeight + Theme.normal
            T.SplitView.maximumHeight: isShrunk ? titleHeight : view.height * 0.6
        }
    }
}
