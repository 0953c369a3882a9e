import QtQuick

// The columns of the local side: widths at the Medium text size, the name takes what is left.
ListModel {
    id: columns

    property int totalWidth: {
        let sum = 0
        for (let i = 0; i < count; ++i)
            sum += get(i).width
        return sum
    }

    ListElement { type: "thumbnail"; width: 46; value: "qrc:/icons/image.svg"; role: 0 }
    ListElement { type: "name"; width: 150; value: qsTr("Name"); role: 257 }
    ListElement { type: "type"; width: 70; value: qsTr("Type"); role: 271 }
    ListElement { type: "size"; width: 90; value: qsTr("Size"); role: 261 }
}
