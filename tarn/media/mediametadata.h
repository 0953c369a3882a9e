#pragma once

#include "tarn/json/json.h"
#include "tarn/media/datetime.h"
#include "tarn/media/rational.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_set>

namespace vantrel {

enum class ColorSpace : std::int32_t;
enum class MediaCaveat : std::int32_t;
enum class MediaType : std::int32_t;

/// What the server knows of one media file. JSON form, all members but "type" and "isPlayable" optional or
/// null: {"type", "isPlayable", "caveats": [text], "caveatTexts": {caveat: sentence}, "duration", "error",
/// "fileSize", "imported", "modified", "startTimecode", "missingPictures", "video": {"width", "height",
/// "pixelAspect": [number, number], "frameRate", "codec", "profile", "colorSpace", "pixelFormat", "bitRate",
/// "fieldOrder"}, "image": {as far as it is a still's}, "audio": {"codec", "description", "channels"}}. Dates
/// are seconds since 1970, UTC.
class MediaMetadata
{
public:
    /// Of moving pictures, or of a still; numbers that nobody knows are absent, and texts empty.
    struct Pictures
    {
        std::optional<int> width; // pixels
        std::optional<int> height;
        std::optional<Rational<int>> pixelAspect;
        std::string codec;       // a still's format
        ColorSpace colorSpace{}; // Unknown
        std::string pixelFormat;
        std::string profile;                 // the four below are of moving pictures alone
        std::optional<double> frameRate;     // pictures a second
        std::optional<std::int64_t> bitRate; // bits a second
        std::string fieldOrder;              // "progressive", "top field first" or "bottom field first"
    };
    struct Audio
    {
        std::string codec;
        std::string description; // what tells it from others of its codec
        int channels = 0;
    };

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
    /// A sentence that an operator can act on; empty where the server gave none.
    std::string getCaveatText(MediaCaveat caveat) const;
    std::optional<double> getDuration() const noexcept { return m_duration; } // seconds
    const std::optional<Pictures>& getVideo() const noexcept { return m_video; }
    const std::optional<Pictures>& getImage() const noexcept { return m_image; } // also of a sequence
    const std::optional<Audio>& getAudio() const noexcept { return m_audio; }
    std::optional<std::int64_t> getFileSize() const noexcept { return m_fileSize; } // bytes
    std::optional<DateTime> getImported() const noexcept { return m_imported; }
    std::optional<DateTime> getModified() const noexcept { return m_modified; }
    const std::string& getError() const noexcept { return m_error; } // why it cannot be played: a sentence
    const std::string& getStartTimecode() const noexcept { return m_startTimecode; } // "10:00:00:00"
    std::optional<std::int64_t> getMissingPictures() const noexcept { return m_missingPictures; }

    void setMediaType(MediaType type) { m_type = type; }
    void setIsPlayable(bool playable) { m_playable = playable; }
    void addCaveat(MediaCaveat caveat, const std::string& text = {});
    void setDuration(std::optional<double> seconds) { m_duration = seconds; }
    void setVideo(std::optional<Pictures> video) { m_video = std::move(video); }
    void setImage(std::optional<Pictures> image) { m_image = std::move(image); }
    void setAudio(std::optional<Audio> audio) { m_audio = std::move(audio); }
    void setFileSize(std::optional<std::int64_t> bytes) { m_fileSize = bytes; }
    void setImported(std::optional<DateTime> time) { m_imported = time; }
    void setModified(std::optional<DateTime> time) { m_modified = time; }
    void setError(std::string text) { m_error = std::move(text); }
    void setStartTimecode(std::string text) { m_startTimecode = std::move(text); }
    void setMissingPictures(std::optional<std::int64_t> count) { m_missingPictures = count; }

private:
    MediaType m_type{}; // Unknown
    bool m_playable = false;
    std::unordered_set<MediaCaveat> m_caveats;
    std::map<MediaCaveat, std::string> m_caveatTexts;
    std::optional<double> m_duration;
    std::optional<Pictures> m_video;
    std::optional<Pictures> m_image;
    std::optional<Audio> m_audio;
    std::optional<std::int64_t> m_fileSize;
    std::optional<DateTime> m_imported;
    std::optional<DateTime> m_modified;
    std::string m_error;
    std::string m_startTimecode;
    std::optional<std::int64_t> m_missingPictures;
};

} // namespace vantrel
