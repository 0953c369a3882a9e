import QtQuick
import QtQuick.Templates as T

T.Popup {
    padding: Theme.normal
    margins: Theme.tight
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    focus: true
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside

    background: Rectangle {
        color: Theme.raised
        border.width: 1
        border.color: Theme.outline
    }
}
