#pragma once

#include "ombra/decode/audioreader.h"

#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// The sound of one medium as it is played: its best stream, or, where it has several of one channel each, as
/// broadcast files have, all of them as the channels of one programme. Otherwise as an AudioReader.
class SoundProgramme
{
public:
    /// Null for a medium without sound, with an empty reason, and for sound that cannot be decoded, with the
    /// reason. The flag must outlive it.
    static std::unique_ptr<SoundProgramme> open(const std::filesystem::path& file,
                                                const std::atomic<bool>& stop, std::string* error);

    int channels() const;
    double duration() const;
    /// Whether some of the medium's sound is left out: streams that are no programme, channels that do not
    /// decode, or more of them than are played.
    bool isPartial() const { return m_partial; }

    bool seek(double time);
    bool next(std::vector<float>& out);

private:
    /// One stream, and what is decoded of it further than of the others.
    struct Track
    {
        std::unique_ptr<AudioReader> reader; // null: silence
        std::vector<float> ahead{};
        bool ended = false;
    };

    bool fill(Track& track);

    std::vector<Track> m_tracks; // one, or each for a channel
    bool m_partial = false;
};

} // namespace vantrel::ombra
