import QtQuick
import ZTCommon 1.0

Row {
    spacing: 16

    ZTTextField { text: "Text" }
    ZTTextField { placeholderText: "Placeholder" }
    ZTTextField { text: "Disabled"; enabled: false }
}
