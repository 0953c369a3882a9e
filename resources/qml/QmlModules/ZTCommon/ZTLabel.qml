import QtQuick

// A line of text, plain whatever it holds.
Text {
    color: Theme.text
    textFormat: Text.PlainText
    font.pixelSize: fontSizes.body
    elide: Text.ElideRight
    verticalAlignment: Text.AlignVCenter
    Accessible.ignored: text.length === 0
}
