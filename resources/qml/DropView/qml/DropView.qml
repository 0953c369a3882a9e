import QtQuick
import Tessen.Models 1.0
import Tessen.Utils 1.0
import ZTCommon 1.0

// What a drop has found: its sequences, and its stills. What stands in the fields below a list is that of the rows
// selected there, at first of all.
ZTQMLWidget {
    id: view

    required property var sequences
    required property var stills
    required property var dialog
    readonly property bool isSound: !rate.isFaulty && !firstFrame.isFaulty && !lastFrame.isFaulty && !duration.isFaulty
    readonly property int between: sequencePane.visible && stillPane.visible ? 2 * Theme.loose : 0
    readonly property int room: height - between

    implicitWidth: Theme.scaled(620)
    implicitHeight: (sequencePane.visible ? sequencePane.implicitHeight : 0) + between
                    + (stillPane.visible ? stillPane.implicitHeight : 0)
    color: Theme.panel
    onIsSoundChanged: dialog.isSound = isSound

    function takeFocus() { (sequencePane.visible ? rate : duration).forceActiveFocus() }

    CandidatePane {
        id: sequencePane

        readonly property bool areStills: value(ImageSequenceModel.ImageTypeRole) === Images.StillImage

        objectName: "DropDialog-sequences"
        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: stillPane.visible ? Math.min(implicitHeight, Math.max(view.room / 2, view.room - stillPane.implicitHeight))
                                  : view.room
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
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: sequencePane.visible ? view.room - sequencePane.height : view.room
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
