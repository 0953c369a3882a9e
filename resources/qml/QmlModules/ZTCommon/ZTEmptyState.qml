import QtQuick

// What stands where nothing is: a drawing, what it means and what to do next.
Column {
    id: state

    property string iconName
    property string title
    property string text

    spacing: Theme.normal

    ZTIcon {
        anchors.horizontalCenter: parent.horizontalCenter
        name: state.iconName
        side: fontSizes.icon * 2
        color: Theme.faint
        visible: name.length > 0
    }
    ZTLabel {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        text: state.title
        color: Theme.strong
        font.weight: Font.DemiBold
        wrapMode: Text.WordWrap
        visible: text.length > 0
    }
    ZTLabel {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        text: state.text
        color: Theme.dim
        wrapMode: Text.WordWrap
        visible: text.length > 0
    }
}
