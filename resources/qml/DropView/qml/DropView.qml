import QtQuick
import ZTCommon 1.0

// What a drop has found, in the order of its slots: videos and sounds, sequences, and stills. What stands in the fields
// below a list is that of the rows selected there, at first of all.
ZTQMLWidget {
    id: view

    required property var medias
    required property var sequences
    required property var stills
    required property var dialog
    readonly property var all: [mediaPane, sequencePane, stillPane]
    readonly property var panes: all.filter(pane => pane.visible)
    readonly property bool isSound: all.every(pane => pane.item === null || pane.item.isSound)
    readonly property int wanted: panes.reduce((sum, pane) => sum + pane.item.implicitHeight, 0)
    readonly property int between: Math.max(0, panes.length - 1) * list.spacing

    implicitWidth: Theme.scaled(620)
    implicitHeight: wanted + between
    color: Theme.panel
    onIsSoundChanged: dialog.isSound = isSound

    function takeFocus() {
        const pane = [sequencePane, stillPane, mediaPane].find(one => one.visible)
        if (pane)
            pane.item.takeFocus()
    }
    // Makes one of the lists, and then the rows of one of those that have any; false where there is none any more.
    function fill(step) {
        if (step < all.length) {
            all[step].active = true
            return true
        }
        const pane = panes[step - all.length]
        if (pane)
            pane.item.fill()
        return !!pane
    }
    // Where there is no room for all, those that want little have it, and the others share the rest.
    function heightOf(pane) {
        let room = height - between
        let open = panes
        for (;;) {
            const share = room / Math.max(1, open.length)
            const small = open.filter(one => one.item.implicitHeight <= share)
            if (small.length === 0 || small.length === open.length)
                return share
            if (small.includes(pane))
                return pane.item.implicitHeight
            room -= small.reduce((sum, one) => sum + one.item.implicitHeight, 0)
            open = open.filter(one => !small.includes(one))
        }
    }

    Column {
        id: list

        anchors.fill: parent
        spacing: 2 * Theme.loose

        Loader {
            id: mediaPane

            active: false
            width: parent.width
            height: view.heightOf(mediaPane)
            visible: item !== null && item.count > 0
            sourceComponent: MediaPane { model: view.medias }
        }
        Loader {
            id: sequencePane

            active: false
            width: parent.width
            height: view.heightOf(sequencePane)
            visible: item !== null && item.count > 0
            sourceComponent: SequencePane { model: view.sequences }
        }
        Loader {
            id: stillPane

            active: false
            width: parent.width
            height: view.heightOf(stillPane)
            visible: item !== null && item.count > 0
            sourceComponent: StillPane { model: view.stills }
        }
    }
}
