#pragma once

#include "tarn/json/json.h"
#include "tarn/media/mediametadata.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vantrel {

enum class MediaDurationType : std::int32_t;
enum class MediaType : std::int32_t;
enum class ScaleMode : std::int32_t;

/// One media file with its playback settings. A typed view of its JSON node: copies share it, a setter makes
/// a new one, and toJson() is the node itself. All times in seconds.
class MediaSlot
{
public:
    MediaSlot();
    MediaSlot(const std::string& name, const std::string& url);

    /// Members that are missing take their defaults, unknown ones are kept; false, with the slot as it was,
    /// on a value of the wrong type or range, and then error says which.
    bool parseJson(const Json& json, std::string* error = nullptr);
    const Json& toJson() const noexcept { return m_json; }

    std::string getName() const;
    std::string getUrl() const; // of the content
    double getInpoint() const;
    std::optional<double> getOutpoint() const; // none: the end of the media
    /// The custom duration, else the media's own, else that of an image sequence by its frames, else 0;
    /// untrimmed.
    double getEffectiveMediaDuration() const;
    /// From the in point to the out point (or the end), never below 0.
    double getTrimmedDuration() const;
    std::optional<double> getInherentMediaDuration() const;
    std::optional<double> getCustomMediaDuration() const;
    bool isFinite() const;
    ScaleMode getScaleMode() const;
    bool getIsPlayable() const;
    /// A still stands for ever until somebody gives it a duration, whatever its type says.
    MediaDurationType getDurationType() const;
    std::optional<double> getFrameRate() const; // of an image sequence, like the two below
    std::optional<int> getFirstFrameNum() const;
    std::optional<int> getLastFrameNum() const;
    MediaType getMediaType() const;
    MediaMetadata getMetadata() const { return {getMediaType(), getIsPlayable()}; }

    void setName(const std::string& name);
    void setUrl(const std::string& url);
    void setInpoint(double seconds);
    void setOutpoint(std::optional<double> seconds);
    void setInherentMediaDuration(std::optional<double> seconds);
    void setCustomMediaDuration(std::optional<double> seconds);
    void setScaleMode(ScaleMode mode);
    void setIsPlayable(bool playable);
    void setDurationType(MediaDurationType type);
    void setFrameRate(double rate);
    void setFirstFrameNum(int frame);
    void setLastFrameNum(int frame);
    void setMediaType(MediaType type);

    friend bool operator==(const MediaSlot& a, const MediaSlot& b) { return a.m_json == b.m_json; }

private:
    void setSequenceMember(const char* key, Json value);

    Json m_json;
};

} // namespace vantrel
