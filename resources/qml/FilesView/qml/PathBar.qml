import QtQuick
import ZTCommon 1.0

// Where a browser is: the way up, places, and a button for each folder on the way; Ctrl+L types a path.
Item {
    id: bar

    property var browser
    readonly property var model: browser.model
    property var crumbs: model ? (model.directoryPath, model.breadcrumbs()) : []
    property bool isTyping: false

    implicitHeight: Theme.barHeight

    function type() {
        isTyping = true
        field.text = model.isAtTop ? "/" : model.directoryPath
        field.forceActiveFocus()
        field.selectAll()
    }

    Row {
        id: buttons

        spacing: 2

        ZTButton {
            objectName: bar.browser.objectName + "-up-button"
            kind: "flat"
            iconName: "arrow_up"
            tip: qsTr("To the folder above (Backspace)")
            enabled: !!bar.model && bar.model.parentPath.length > 0
            onClicked: bar.browser.goUp()
        }
        ZTButton {
            id: places

            objectName: bar.browser.objectName + "-places-button"
            kind: "flat"
            iconName: "home"
            tip: qsTr("Places: folders that are used often, and drives")
            visible: bar.browser.isLocal
            enabled: bar.browser.isUsable
            isOpen: placesMenu.item !== null && placesMenu.item.visible
            onClicked: placesMenu.item ? placesMenu.item.open() : placesMenu.active = true

            Loader {
                id: placesMenu

                active: false
                sourceComponent: PlacesMenu {
                    parent: places
                    browser: bar.browser
                    y: places.height
                }
                onLoaded: item.open()
            }
        }
    }
    ListView {
        id: list

        objectName: bar.browser.objectName + "-breadcrumbs"
        anchors { left: buttons.right; right: parent.right; top: parent.top; bottom: parent.bottom; leftMargin: Theme.tight }
        orientation: ListView.Horizontal
        visible: !bar.isTyping
        clip: true
        interactive: contentWidth > width
        boundsBehavior: Flickable.StopAtBounds
        model: bar.crumbs
        onCountChanged: Qt.callLater(positionViewAtEnd)
        onWidthChanged: Qt.callLater(positionViewAtEnd)

        delegate: Row {
            required property int index
            required property var modelData

            height: list.height
            opacity: x + 1 < list.contentX ? 0 : 1 // no half of a name

            ZTIcon {
                anchors.verticalCenter: parent.verticalCenter
                name: "chevron_right"
                side: fontSizes.body
                color: Theme.faint
                visible: index > 0
            }
            ZTButton {
                objectName: bar.browser.objectName + "-crumb-" + index
                height: list.height
                kind: "flat"
                leftPadding: fontSizes.pad
                rightPadding: fontSizes.pad
                text: modelData.name
                tip: qsTr("Go to %1").arg(modelData.path)
                onClicked: bar.browser.goTo(modelData.path)
            }
        }
        MouseArea {
            anchors.fill: parent
            z: -1
            onDoubleClicked: bar.type()
        }
    }
    ZTTextField {
        id: field

        objectName: bar.browser.objectName + "-path-field"
        anchors.fill: list
        visible: bar.isTyping
        tip: qsTr("A path; Enter goes there, Esc leaves it")
        Accessible.name: qsTr("Path")
        onAccepted: {
            bar.isTyping = false
            bar.browser.goTo(text)
            bar.browser.takeFocus()
        }
        Keys.onEscapePressed: {
            bar.isTyping = false
            bar.browser.takeFocus()
        }
        onActiveFocusChanged: if (!activeFocus) bar.isTyping = false
    }
}
