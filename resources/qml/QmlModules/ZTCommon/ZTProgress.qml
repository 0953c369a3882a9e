import QtQuick

// How far something is: value from 0 to 1.
Rectangle {
    id: bar

    property double value: 0
    property color ink: Theme.accent

    implicitHeight: 8 // with its edge
    radius: height / 2
    color: Theme.background
    border.width: 1
    border.color: Theme.handle
    Accessible.role: Accessible.ProgressBar
    Accessible.name: qsTr("%1 %").arg(Math.round(value * 100))

    Rectangle {
        width: Math.round(parent.width * Math.max(0, Math.min(1, bar.value)))
        height: parent.height
        radius: parent.radius
        color: bar.ink
    }
}
