import QtQuick

// Has who listens told of the row that the keys of a view mean: the view keeps the keyboard itself.
QtObject {
    property var view: null
    property int row: -1
    readonly property bool hasKeys: view !== null && view.activeFocus

    onRowChanged: Qt.callLater(tell) // once the view has it
    onHasKeysChanged: Qt.callLater(tell)
    function tell() {
        if (hasKeys && row >= 0)
            rowSpeech.tell(view.itemAtIndex(row))
    }
}
