import QtQuick
import QtQuick.Templates as T
import ZTCommon 1.0

// What is known of the slots that are selected.
ShrinkableFrame {
    id: panel

    property var pane
    readonly property var shown: slotDetails.shown
    readonly property string arriving: shown.count === 1 ? (mediaActions.arrivalsRevision, mediaActions.arriving(shown.collection, shown.slot)) : ""

    signal pointRequested(url file)

    title: shown.count > 1 ? qsTr("%1 slots").arg(shown.count) : shown.count === 1 ? qsTr("Slot %1").arg(shown.slot)
                                                                                  : qsTr("Details")
    onPaneChanged: slotDetails.follow(pane ? pane.selection : null)

    component Lines: Column {
        id: lines

        property string title
        property alias texts: texts.model

        width: parent.width
        spacing: 2
        visible: texts.count > 0

        ZTLabel {
            width: parent.width
            text: lines.title
            color: Theme.dim
        }
        Repeater {
            id: texts

            delegate: ZTLabel {
                required property string modelData

                width: lines.width
                text: modelData
                wrapMode: Text.Wrap
            }
        }
    }

    Flickable {
        id: area

        objectName: "media-details"
        anchors.fill: parent
        anchors.leftMargin: 2 * Theme.normal
        contentHeight: column.height
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: contentHeight > height
        T.ScrollBar.vertical: ZTScrollBar {}
        Accessible.role: Accessible.Pane
        Accessible.name: qsTr("Details")
        Keys.onShortcutOverride: (event) => event.accepted = event.key === Qt.Key_Up || event.key === Qt.Key_Down
        Keys.onUpPressed: contentY = Math.max(0, contentY - Theme.rowHeight)
        Keys.onDownPressed: contentY = Math.max(0, Math.min(contentHeight - height, contentY + Theme.rowHeight))

        Column {
            id: column

            width: area.width - fontSizes.bar - Theme.tight
            spacing: Theme.normal

            Rectangle {
                width: parent.width
                height: Math.round(width * 9 / 16)
                visible: panel.shown.count === 1
                radius: 3
                color: Theme.field

                KindIcon {
                    anchors.centerIn: parent
                    side: Math.round(parent.height * 0.4)
                    kind: panel.shown.kind
                    visible: picture.status !== Image.Ready
                }
                Image {
                    id: picture

                    anchors.fill: parent
                    sourceSize: Qt.size(width * fontSizes.ratio, height * fontSizes.ratio)
                    fillMode: Image.PreserveAspectFit
                    source: panel.shown.picture
                    cache: false
                    visible: status === Image.Ready
                }
            }
            ZTLabel {
                objectName: "media-details-name"
                width: parent.width
                visible: text.length > 0
                text: panel.shown.name
                color: Theme.strong
                font.weight: Font.DemiBold
                wrapMode: Text.Wrap
            }
            ZTLabel {
                objectName: "media-details-path"
                width: parent.width
                visible: text.length > 0
                text: panel.shown.path
                color: Theme.dim
                wrapMode: Text.WrapAnywhere
            }
            ZTLabel {
                width: parent.width
                visible: text.length > 0
                text: panel.arriving
                color: Theme.strong
            }
            ZTProgress {
                width: parent.width
                visible: panel.arriving !== ""
                value: visible ? (mediaActions.arrivalsRevision, mediaActions.arrivedPart(panel.shown.collection, panel.shown.slot)) : 0
            }
            Row {
                width: parent.width
                spacing: Theme.tight
                visible: panel.shown.faults !== "" && panel.arriving === ""

                ZTIcon {
                    id: mark

                    name: "error"
                    color: panel.shown.isPlayable ? Theme.accent : Theme.bad
                }
                ZTLabel {
                    objectName: "media-details-faults"
                    width: parent.width - mark.width - parent.spacing
                    text: panel.shown.faults
                    color: Theme.strong
                    wrapMode: Text.Wrap
                }
            }
            ZTButton {
                objectName: "media-details-point-button"
                width: Math.min(implicitWidth, parent.width)
                visible: String(panel.shown.file) !== ""
                kind: panel.shown.isPlayable || panel.arriving !== "" ? "" : "accent"
                iconName: "replace_media"
                text: qsTr("Another file ...")
                tip: qsTr("Lets this slot, and all that play the same file, play another one of the server")
                enabled: mediaActions.isEditable
                onClicked: panel.pointRequested(panel.shown.file)
            }
            Repeater {
                model: panel.shown.facts

                delegate: Item {
                    required property var modelData

                    width: column.width
                    height: Math.max(label.implicitHeight, value.implicitHeight)

                    ZTLabel {
                        id: label

                        width: Math.round(parent.width * 0.42)
                        text: modelData.label
                        color: Theme.dim
                    }
                    ZTLabel {
                        id: value

                        anchors { left: label.right; right: parent.right; leftMargin: Theme.tight }
                        text: modelData.value
                        wrapMode: Text.Wrap
                    }
                }
            }
            Lines {
                title: qsTr("Played by:")
                texts: panel.shown.uses
            }
            Lines {
                title: qsTr("The same file:")
                texts: panel.shown.twins
            }
        }
    }
    ZTEmptyState {
        anchors.centerIn: parent
        width: Math.min(parent.width - 2 * Theme.loose, Theme.scaled(320))
        visible: panel.shown.count === 0
        iconName: "info"
        text: qsTr("What is known of a slot shows here once it is selected.")
    }
}
