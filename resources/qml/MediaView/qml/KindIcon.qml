import Tessen.Utils 1.0
import ZTCommon 1.0

// The drawing of a kind of media, where there is no picture of it.
ZTIcon {
    property int kind: Media.UnknownFile

    name: kind === Media.VideoFile ? "video" : kind === Media.AudioFile ? "audio" : kind === Media.ImageFile ? "image"
        : kind === Media.ImageSequence ? "image_sequence" : "media"
    color: Theme.faint
}
