import QtQuick
import ZTCommon 1.0

Row {
    spacing: 16

    ZTCheckBox { text: "Off" }
    ZTCheckBox { text: "On"; checked: true }
    ZTCheckBox { text: "Disabled"; enabled: false }
}
