import QtQuick
import ZTCommon 1.0

// A number under its name that all selected rows get as it is typed. What they cannot have is marked, keeps the dialog
// from being accepted, and goes when the field is left.
FocusScope {
    id: control

    property var pane: null
    property int role
    property string label
    property bool isWhole: false
    property bool isFaulty: false
    readonly property var value: pane.value(role) // undefined where the rows differ

    implicitWidth: Theme.scaled(112)
    implicitHeight: caption.height + Theme.tight + field.implicitHeight
    activeFocusOnTab: false
    onValueChanged: if (!field.activeFocus) reset()

    function reset() {
        isFaulty = false
        field.text = value === undefined ? "" : String(Number(value.toFixed(3)))
    }
    function take() {
        const text = field.text.trim().replace(",", ".")
        const isNumber = (isWhole ? /^\d{1,9}$/ : /^\d{1,9}(\.\d*)?$/).test(text)
        isFaulty = !(isNumber && pane.write(role, Number(text))) && !(text === "" && value === undefined)
    }

    ZTLabel {
        id: caption

        width: parent.width
        height: implicitHeight
        text: control.label
        color: Theme.dim
        font.pixelSize: fontSizes.caption
        Accessible.ignored: true
    }
    ZTTextField {
        id: field

        objectName: control.objectName + "-input"
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        focus: true
        enabled: control.enabled
        placeholderText: control.value === undefined ? qsTr("various") : ""
        isFaulty: control.isFaulty
        Accessible.name: control.label
        Component.onCompleted: control.reset()
        onTextEdited: control.take()
        onActiveFocusChanged: activeFocus ? selectAll() : control.reset()
        Keys.onReturnPressed: (event) => event.accepted = control.isFaulty
        Keys.onEnterPressed: (event) => event.accepted = control.isFaulty
    }
}
