import QtQuick
import QtQuick.Templates as T

T.Menu {
    id: menu

    margins: Theme.tight
    topPadding: Theme.tight
    bottomPadding: Theme.tight
    overlap: 1
    focus: true
    implicitWidth: {
        let widest = 160
        for (let i = 0; i < count; ++i)
            widest = Math.max(widest, itemAt(i).implicitWidth)
        return widest
    }
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    delegate: ZTMenuItem {}

    contentItem: ListView {
        implicitHeight: contentHeight
        model: menu.contentModel
        interactive: contentHeight > height
        clip: true
        currentIndex: menu.currentIndex
        keyNavigationEnabled: true
    }
    background: Rectangle {
        color: Theme.raised
        border.width: 1
        border.color: Theme.outline
    }
}
