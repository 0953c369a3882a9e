#pragma once

#include "tarn/json/json.h"
#include "tarn/media/enums.h"

#include <optional>
#include <string>
#include <unordered_set>

namespace vantrel {

/// What the server knows of one media file. JSON form, all members but "type" and "isPlayable" optional or
/// null:
/// {"type", "isPlayable", "caveats": [text], "duration", "width", "height", "frameRate", "codec",
/// "audioCodec", "error"}.
class MediaMetadata
{
public:
    /// Stands for a caveat whose text this version does not know.
    static constexpr MediaCaveat unknownCaveat{-1};

    MediaMetadata() = default;
    MediaMetadata(MediaType type, bool playable)
        : m_type(type)
        , m_playable(playable)
    {
    }

    /// False, and the record as it was, on a missing or mistyped member.
    bool parseJson(const Json& json);
    Json toJson() const;

    MediaType getMediaType() const noexcept { return m_type; }
    bool getIsPlayable() const noexcept { return m_playable; }
    const std::unordered_set<MediaCaveat>& getCaveats() const noexcept { return m_caveats; }
    std::optional<double> getDuration() const noexcept { return m_duration; }   // seconds
    std::optional<int> getWidth() const noexcept { return m_width; }            // pixels
    std::optional<int> getHeight() const noexcept { return m_height; }          // pixels
    std::optional<double> getFrameRate() const noexcept { return m_frameRate; } // frames a second
    const std::string& getCodec() const noexcept { return m_codec; }
    const std::string& getAudioCodec() const noexcept { return m_audioCodec; }
    const std::string& getError() const noexcept { return m_error; } // why it cannot be played

    void setMediaType(MediaType type) { m_type = type; }
    void setIsPlayable(bool playable) { m_playable = playable; }
    void addCaveat(MediaCaveat caveat) { m_caveats.insert(caveat); }
    void setDuration(std::optional<double> seconds) { m_duration = seconds; }
    void setSize(int width, int height)
    {
        m_width = width;
        m_height = height;
    }
    void setFrameRate(std::optional<double> rate) { m_frameRate = rate; }
    void setCodec(std::string name) { m_codec = std::move(name); }
    void setAudioCodec(std::string name) { m_audioCodec = std::move(name); }
    void setError(std::string text) { m_error = std::move(text); }

private:
    MediaType m_type = MediaType::Unknown;
    bool m_playable = false;
    std::unordered_set<MediaCaveat> m_caveats;
    std::optional<double> m_duration;
    std::optional<int> m_width;
    std::optional<int> m_height;
    std::optional<double> m_frameRate;
    std::string m_codec;
    std::string m_audioCodec;
    std::string m_error;
};

} // namespace vantrel
