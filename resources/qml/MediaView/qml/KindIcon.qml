import ZTCommon 1.0

// The drawing of a kind of media, where there is no picture of it.
ZTIcon {
    property int kind: Media.UnknownFile

    name: mediaIcons.of(kind)
    color: Theme.faint
}
