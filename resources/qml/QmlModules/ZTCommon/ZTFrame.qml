import QtQuick

// A panel.
Rectangle {
    color: Theme.panel
    radius: Theme.panelRadius
}
