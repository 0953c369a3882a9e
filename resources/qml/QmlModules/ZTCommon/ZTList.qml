import QtQuick
import QtQuick.Templates as T

// A list that scrolls by the wheel and its bar; drags are its rows' own.
ListView {
    id: list

    // The row that the keys mean; -1 for none.
    property int currentRow: currentIndex
    readonly property ZTSpokenRow spoken: ZTSpokenRow { view: list; row: list.currentRow }

    clip: true
    boundsBehavior: Flickable.StopAtBounds
    reuseItems: true
    keyNavigationEnabled: false
    highlightFollowsCurrentItem: false
    currentIndex: -1
    flickDeceleration: 10000
    pixelAligned: true
    T.ScrollBar.vertical: ZTScrollBar {}
}
