import QtQuick
import Tessen.Models 1.0
import Tessen.Utils 1.0
import ZTCommon 1.0

// Stills, and how long they are to stand.
CandidatePane {
    id: list

    readonly property bool isSound: !duration.isFaulty

    function takeFocus() { duration.forceActiveFocus() }

    objectName: "DropDialog-stills"
    name: qsTr("Stills")
    delegate: CandidateRow {
        required property var model

        pane: list
        iconName: "image"
        name: model.name
        details: [model.hasInfiniteDuration ? qsTr("Until ended") : qsTr("%1 s").arg(Number(model.durationSeconds.toFixed(3)))]
    }

    NumberField {
        id: duration

        objectName: "DropDialog-duration-field"
        pane: list
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
        checked: list.value(StillImageModel.HasInfiniteDurationRole) === true
        onToggled: list.write(StillImageModel.HasInfiniteDurationRole, checked)
    }
}
