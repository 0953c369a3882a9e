import QtQuick
import QtQuick.Templates as T
import ZTCommon 1.0

ZTSplitView {
    width: Theme.scaled(320)
    height: Theme.scaled(64)

    ZTFrame { T.SplitView.preferredWidth: parent.width / 2 }
    ZTFrame { T.SplitView.fillWidth: true }
}
