import QtQuick
import ZTCommon 1.0

ZTProgress {
    width: Theme.scaled(240)
    height: implicitHeight
    value: 0.4
}
