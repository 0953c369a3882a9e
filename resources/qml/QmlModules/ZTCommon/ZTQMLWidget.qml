import QtQuick

// The root of a declarative view: it fills its widget and keeps the keyboard.
FocusScope {
    property alias color: background.color

    focus: true

    Rectangle {
        id: background

        anchors.fill: parent
        color: Theme.background
    }
}
