import QtQuick
import Tessen.Models 1.0
import Tessen.Utils 1.0
import ZTCommon 1.0

// What is no picture: the server tells whether it plays.
CandidatePane {
    id: list

    readonly property bool isSound: true

    function takeFocus() { takeKeys() }

    objectName: "DropDialog-medias"
    name: qsTr("Videos and sounds")
    isEdited: false
    delegate: CandidateRow {
        required property var model

        pane: list
        iconName: mediaIcons.of(model.kind)
        name: model.name
        fault: model.fault === "" ? "" : qsTr("Left out: %1").arg(model.fault)
        details: model.fault !== "" ? [] : model.isTold ? [model.durationString].filter(text => text !== "")
                                                        : [qsTr("not looked into yet")]
        Component.onCompleted: list.model.lookAt(index)
        ListView.onReused: list.model.lookAt(index)
    }
}
