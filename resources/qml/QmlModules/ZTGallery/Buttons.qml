import QtQuick
import ZTCommon 1.0

Row {
    spacing: 16

    ZTButton { text: "Normal" }
    ZTButton { text: "Checked"; checkable: true; checked: true }
    ZTButton { text: "Disabled"; enabled: false }
    ZTButton { text: "Accent"; kind: "accent" }
    ZTButton { text: "Accent, disabled"; kind: "accent"; enabled: false }
    ZTButton { text: "Flat"; kind: "flat" }
}
