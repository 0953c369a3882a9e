#pragma once

#include "ombra/decode/picturereader.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/playenums.h"

#include <optional>
#include <string>
#include <string_view>

namespace vantrel::ombra {

/// What a media URL of the library stands for: a slot's file and how it is played. Times in seconds.
struct MediaItem
{
    SourceMode mode = SourceMode::None;
    std::string contentUrl;
    double inpoint = 0;
    std::optional<double> outpoint;      // none: the end of the media
    std::optional<double> stillDuration; // none: a still stands for ever
    std::optional<SequenceRun> sequence;
    bool playable = false;                  // as far as the library knows
    ScaleMode scaling = ScaleMode::Default; // the output's own

    // Of a playlist's entry only:
    EndAction endAction = EndAction::Pause;
    TakeTransitionType transition = TakeTransitionType::DirectCut;
    double transitionDuration = 0;

    friend bool operator==(const MediaItem&, const MediaItem&) = default;
};

/// Where playbacks learn what to play. The io_context's thread.
class SlotSource
{
public:
    virtual ~SlotSource() = default;

    /// Nothing when the URL is none of the library's, or there is no such slot or entry.
    virtual std::optional<MediaItem> resolve(std::string_view url) const = 0;
    /// The URL of the slot or entry after (direction 1) or before (-1) the given one, in its collection or
    /// playlist; empty at the end.
    virtual std::string neighbour(std::string_view url, int direction) const = 0;
    /// What the newest edit of the library made of the slot or entry that had the URL: its URL now, which is
    /// another one where it was moved; empty where it was removed or another medium was put in its place.
    virtual std::string whereabouts(std::string_view url) const = 0;
};

} // namespace vantrel::ombra
