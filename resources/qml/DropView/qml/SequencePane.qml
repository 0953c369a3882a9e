import QtQuick
import Tessen.Models 1.0
import Tessen.Utils 1.0
import ZTCommon 1.0

// Sequences, and how they are to run.
CandidatePane {
    id: list

    readonly property bool isSound: !rate.isFaulty && !firstFrame.isFaulty && !lastFrame.isFaulty
    readonly property bool areStills: value(ImageSequenceModel.ImageTypeRole) === Images.StillImage

    function takeFocus() { rate.forceActiveFocus() }

    objectName: "DropDialog-sequences"
    name: qsTr("Sequences")
    delegate: CandidateRow {
        required property var model
        readonly property bool isStills: model.imageType === Images.StillImage

        pane: list
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
        pane: list
        role: ImageSequenceModel.FpsRole
        label: qsTr("Frames a second")
        enabled: !list.areStills
    }
    NumberField {
        id: firstFrame

        objectName: "DropDialog-first-field"
        pane: list
        role: ImageSequenceModel.StartFrameRole
        label: qsTr("First frame")
        isWhole: true
        enabled: !list.areStills
    }
    NumberField {
        id: lastFrame

        objectName: "DropDialog-last-field"
        pane: list
        role: ImageSequenceModel.EndFrameRole
        label: qsTr("Last frame")
        isWhole: true
        enabled: !list.areStills
    }
    ZTCheckBox {
        objectName: "DropDialog-stills-checkbox"
        anchors.bottom: parent.bottom
        text: qsTr("As stills")
        tip: qsTr("A slot for each picture")
        checked: list.areStills
        onToggled: list.write(ImageSequenceModel.ImageTypeRole, checked ? Images.StillImage : Images.ImageSequence)
    }
}
