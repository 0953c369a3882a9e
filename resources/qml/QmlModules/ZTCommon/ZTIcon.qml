import QtQuick

// A drawing of the application in one colour, by its name.
Image {
    property string name
    property color color: Theme.text
    property int side: fontSizes.icon

    source: name.length > 0 ? "image://icons/" + name + "/" + String(color).substring(1) : ""
    width: side
    height: side
    sourceSize.width: Math.round(side * fontSizes.ratio)
    sourceSize.height: Math.round(side * fontSizes.ratio)
    Accessible.ignored: true
}
