#pragma once

#include "common/media/address/mediastate.h"
#include "tarn/media/entryaddress.h"
#include "tarn/media/mediaaddress.h"
#include "tarn/media/playenums.h"

#include <QRegularExpression>
#include <QString>

#include <cstdint>

class QModelIndex;

namespace vantrel {

enum class MediaType : std::int32_t;
enum class ScaleMode : std::int32_t;

/// The display text of a scale mode.
QString scaleModeToPrettyString(ScaleMode mode);

namespace media {

/// A playlist entry by the playlist's number and its address in it; they count only when valid.
struct PlaylistAndEntry
{
    int playlist = -1;
    EntryAddress entry;
    bool valid = false;
};

/// Reads and writes brume URLs, and puts media values into words. Static functions, safe from any thread but
/// parseCollectionIndex, which reads a model.
class MediaUtils
{
public:
    MediaUtils() = delete;

    static bool isMediaAddress(const QString& address);
    static bool isSlotAddress(const QString& address);
    static bool isPlaylistAddress(const QString& address);
    /// No address where the text is none.
    static MediaAddress parseSlotAddress(const QString& address);
    static PlaylistAndEntry parsePlaylistAddress(const QString& address);
    /// The slot that an index of MediaLibraryModel, or of a proxy of it, stands on; no address for none.
    static MediaAddress parseCollectionIndex(const QModelIndex& index);
    /// The collection that an index of the library's model or of a proxy of it stands in; -1 for none.
    static int collectionNumber(const QModelIndex& index);
    static QString toSlotAddress(int collection, int slot);
    static QString toSlotAddress(MediaAddress address);
    static QString toPlaylistAddress(int playlist, EntryAddress entry);

    /// The state without its play part, as the server would tell it.
    static MediaState serverEquivalentState(MediaState state);
    static bool isPlayable(MediaState state);
    static QString describeMediaState(MediaState state);
    /// Seconds as "1 min 30.5 sec"; 0 gives the empty string.
    static QString formatSeconds(double seconds);
    /// Judged by the name alone; a sequence is written with a printf pattern ("clip_%05d.png").
    static MediaType getMediaType(const QString& path);
    static QString transitionTypeToHumanReadable(TakeTransitionType type);
    static QString endActionToHumanReadable(EndAction action);

    static const QRegularExpression collectionRegex;
    static const QRegularExpression playlistRegex;
};

} // namespace media
} // namespace vantrel
