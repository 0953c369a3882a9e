#pragma once

#include "tarn/json/json.h"
#include "tarn/media/playenums.h"

#include <string>

namespace vantrel {

/// One entry of a playlist: the slot it plays, what happens at its end and how it is taken. A typed view of
/// its JSON node: copies share it, a setter makes a new one.
class PlaylistEntry
{
public:
    PlaylistEntry();
    /// The transition's duration in seconds.
    PlaylistEntry(const std::string& mediaUrl, EndAction endAction, TakeTransitionType transitionType,
                  double transitionDuration);

    /// Missing members take their defaults; false, with the entry as it was, on bad content.
    bool parseJson(const Json& json, std::string* error = nullptr);
    const Json& toJson() const noexcept { return m_json; }

    std::string getMediaUrl() const; // of a slot
    EndAction getEndAction() const;
    TakeTransitionType getTransitionType() const;
    double getTransitionDuration() const; // seconds

    void setMediaUrl(const std::string& url);
    void setEndAction(EndAction action);
    void setTransitionType(TakeTransitionType type);
    void setTransitionDuration(double seconds);

    friend bool operator==(const PlaylistEntry& a, const PlaylistEntry& b) { return a.m_json == b.m_json; }

private:
    Json m_json;
};

} // namespace vantrel
