import QtQuick
import Tessen.Models 1.0
import Tessen.Utils 1.0
import ZTCommon 1.0

// What a drop has found, in the order of its slots: videos and sounds, sequences, and stills. What stands in the fields
// below a list is that of the rows selected there, at first of all.
ZTQMLWidget {
    id: view

    required property var medias
    required property var sequences
    required property var stills
    required property var dialog
    readonly property bool isSound: !rate.isFaulty && !firstFrame.isFaulty && !lastFrame.isFaulty && !duration.isFaulty
    readonly property var panes: [mediaPane, sequencePane, stillPane].filter(pane => pane.visible)
    readonly property int wanted: panes.reduce((sum, pane) => sum + pane.implicitHeight, 0)
    readonly property int between: Math.max(0, panes.length - 1) * list.spacing

    implicitWidth: Theme.scaled(620)
    implicitHeight: wanted + between
    color: Theme.panel
    onIsSoundChanged: dialog.isSound = isSound

    function takeFocus() {
        if (sequencePane.visible || stillPane.visible)
            (sequencePane.visible ? rate : duration).forceActiveFocus()
        else
            mediaPane.takeKeys()
    }
    // Makes the rows of one of the lists; false where there is none any more.
    function fill(number) {
        if (number >= panes.length)
            return false
        panes[number].fill()
        return true
    }
    // Where there is no room for all, those that want little have it, and the others share the rest.
    function heightOf(pane) {
        let room = height - between
        let open = panes
        for (;;) {
            const share = room / Math.max(1, open.length)
            const small = open.filter(one => one.implicitHeight <= share)
            if (small.length === 0 || small.length === open.length)
                return share
            if (small.includes(pane))
                return pane.implicitHeight
            room -= small.reduce((sum, one) => sum + one.implicitHeight, 0)
            open = open.filter(one => !small.includes(one))
        }
    }

    Column {
        id: list

        anchors.fill: parent
        spacing: 2 * Theme.loose

        CandidatePane {
            id: mediaPane

            objectName: "DropDialog-medias"
            width: parent.width
            height: view.heightOf(mediaPane)
            visible: count > 0
            name: qsTr("Videos and sounds")
            model: view.medias
            isEdited: false
            delegate: CandidateRow {
                required property var model

                pane: mediaPane
                iconName: mediaIcons.of(model.kind)
                name: model.name
                fault: model.fault === "" ? "" : qsTr("Left out: %1").arg(model.fault)
                details: model.fault !== "" ? [] : model.isTold ? [model.durationString].filter(text => text !== "")
                                                                : [qsTr("not looked into yet")]
                Component.onCompleted: mediaPane.model.lookAt(index)
                ListView.onReused: mediaPane.model.lookAt(index)
            }
        }
        CandidatePane {
            id: sequencePane

            readonly property bool areStills: value(ImageSequenceModel.ImageTypeRole) === Images.StillImage

            objectName: "DropDialog-sequences"
            width: parent.width
            height: view.heightOf(sequencePane)
            visible: count > 0
            name: qsTr("Sequences")
            model: view.sequences
            delegate: CandidateRow {
                required property var model
                readonly property bool isStills: model.imageType === Images.StillImage

                pane: sequencePane
                iconName: isStills ? "image" : "image_sequence"
                name: model.name
                fault: isStills || model.missingFrameCount === 0 ? "" : qsTr("%n missing", "", model.missingFrameCount)
                details: isStills ? [qsTr("%n stills", "", model.stillImageCount)]
                                  : [qsTr("%1 to %2").arg(model.startFrame).arg(model.endFrame),
                                     qsTr("%1 fps").arg(Number(model.fps.toFixed(3))), model.durationString]
            }

            NumberField {
                id: rate

                objectName: "DropDialog-rate-field"
                pane: sequencePane
                role: ImageSequenceModel.FpsRole
                label: qsTr("Frames a second")
                enabled: !sequencePane.areStills
            }
            NumberField {
                id: firstFrame

                objectName: "DropDialog-first-field"
                pane: sequencePane
                role: ImageSequenceModel.StartFrameRole
                label: qsTr("First frame")
                isWhole: true
                enabled: !sequencePane.areStills
            }
            NumberField {
                id: lastFrame

                objectName: "DropDialog-last-field"
                pane: sequencePane
                role: ImageSequenceModel.EndFrameRole
                label: qsTr("Last frame")
                isWhole: true
                enabled: !sequencePane.areStills
            }
            ZTCheckBox {
                objectName: "DropDialog-stills-checkbox"
                anchors.bottom: parent.bottom
                text: qsTr("As stills")
                tip: qsTr("A slot for each picture")
                checked: sequencePane.areStills
                onToggled: sequencePane.write(ImageSequenceModel.ImageTypeRole, checked ? Images.StillImage : Images.ImageSequence)
            }
        }
        CandidatePane {
            id: stillPane

            objectName: "DropDialog-stills"
            width: parent.width
            height: view.heightOf(stillPane)
            visible: count > 0
            name: qsTr("Stills")
            model: view.stills
            delegate: CandidateRow {
                required property var model

                pane: stillPane
                iconName: "image"
                name: model.name
                details: [model.hasInfiniteDuration ? qsTr("Until ended") : qsTr("%1 s").arg(Number(model.durationSeconds.toFixed(3)))]
            }

            NumberField {
                id: duration

                objectName: "DropDialog-duration-field"
                pane: stillPane
                role: StillImageModel.DurationSecondsRole
                label: qsTr("Seconds")
                enabled: !infinite.checked
            }
            ZTCheckBox {
                id: infinite

                objectName: "DropDialog-infinite-checkbox"
                anchors.bottom: parent.bottom
                text: qsTr("Infinite")
                tip: qsTr("Stands until somebody ends it")
                checked: stillPane.value(StillImageModel.HasInfiniteDurationRole) === true
                onToggled: stillPane.write(StillImageModel.HasInfiniteDurationRole, checked)
            }
        }
    }
}
