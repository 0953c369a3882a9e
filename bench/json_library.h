#pragma once

#include "tarn/json/json.h"

#include <nlohmann/json.hpp>

#include <array>
#include <chrono>
#include <cstdio>
#include <malloc.h>
#include <random>
#include <string>
#include <vector>

namespace vantrel::bench {

/// The shape of a synthetic media library: a fifth as many entries as slots.
struct LibraryShape
{
    int slots = 1000;
    int perCollection = 100; // 0: all in one
    int perPlaylist = 50;
    std::string suffix() const
    {
        return std::to_string(slots) + "-slots/" +
               (perCollection ? std::to_string(perCollection) + "-per-collection" : "one-collection");
    }
    int collectionOf(int slot) const { return perCollection ? slot / perCollection + 1 : 1; }
    int placeOf(int slot) const { return perCollection ? slot % perCollection + 1 : slot + 1; }
};

/// Writes a library as a server would send it, with the variety of names, paths and times that shows have.
/// The same shape gives the same text.
class LibraryText
{
public:
    explicit LibraryText(const LibraryShape& shape)
        : m_shape(shape)
    {
    }

    std::string make()
    {
        m_out = "{\"collections\":{";
        for (int slot = 0, open = 0; slot < m_shape.slots; ++slot) {
            const int collection = m_shape.collectionOf(slot);
            if (collection != open) {
                m_out += open ? "}}," : "";
                m_out += quoted(std::to_string(collection)) + ":{\"name\":\"Collection ";
                m_out += std::to_string(collection) + "\",\"slots\":{";
                open = collection;
            } else {
                m_out += ',';
            }
            addSlot(collection, m_shape.placeOf(slot));
        }
        m_out += "}}},\"playlists\":{";
        for (int entry = 0; entry < m_shape.slots / 5; ++entry)
            addEntry(entry);
        m_out += "}}}}";
        return std::move(m_out);
    }

private:
    static std::string quoted(const std::string& text) { return nlohmann::json(text).dump(); }
    int draw(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    template <std::size_t N>
    const char* pick(const std::array<const char*, N>& from)
    {
        return from[static_cast<std::size_t>(draw(0, static_cast<int>(N) - 1))];
    }
    std::string words(int count)
    {
        static constexpr std::array<const char*, 24> all = {
            "opening", "forest", "aerial", "night",    "crowd", "stage", "loop", "intro",
            "dance",   "ocean",  "fire",   "neon",     "grid",  "logo",  "café", "sunrise",
            "夜景",    "strobe", "tunnel", "\"live\"", "wave",  "a\\b",  "a/b",  "m~n"};
        std::string text;
        for (int i = 0; i < count; ++i)
            text += (i ? " " : "") + std::string(pick(all));
        return text;
    }
    std::string seconds(int mostMilliseconds)
    {
        std::array<char, 32> text{};
        const int drawn = draw(0, mostMilliseconds);
        std::snprintf(text.data(), text.size(), "%d.%03d", drawn / 1000, drawn % 1000);
        return text.data();
    }

    void addSlot(int collection, int place)
    {
        static constexpr std::array<const char*, 6> kinds = {"mov", "mp4", "png", "jpg", "wav", "tiff"};
        static constexpr std::array<const char*, 15> stems = {"opening", "forest", "aerial", "night", "crowd",
                                                              "stage",   "loop",   "intro",  "dance", "ocean",
                                                              "fire",    "neon",   "grid",   "logo",  "wave"};
        static constexpr std::array<const char*, 5> scales = {"fit", "clip", "stretch", "centered",
                                                              "default"};
        const std::string kind = pick(kinds);
        const bool sequence = kind == "tiff";
        const bool still = kind == "png" || kind == "jpg";
        std::array<char, 128> url{};
        std::snprintf(url.data(), url.size(), "file:///media/store/%02d/%s_%s%05d.%s", collection % 100,
                      pick(stems), sequence ? "%25" : "", place, kind.c_str());
        m_urls.push_back("brume://collections/" + std::to_string(collection) + "/slots/" +
                         std::to_string(place));
        m_out += quoted(std::to_string(place)) + ":{\"contentUrl\":" + quoted(url.data());
        m_out += ",\"duration\":" + (draw(0, 3) ? "null" : seconds(600000));
        m_out += std::string(",\"durationType\":\"") + (draw(0, 31) ? "manual" : "infinite");
        m_out += "\",\"imageSequence\":";
        m_out += sequence ? "{\"firstFrame\":" + std::to_string(draw(0, 9)) +
                                ",\"framerate\":29.97,\"lastFrame\":" + std::to_string(draw(10, 9999)) + "}"
                          : "null";
        m_out += ",\"inpoint\":" + (draw(0, 1) ? seconds(150000) : "0");
        m_out += draw(0, 32) ? ",\"isPlayable\":true" : ",\"isPlayable\":false";
        m_out += ",\"mediaDuration\":" + (still ? "null" : seconds(600000));
        m_out += ",\"name\":" + quoted(words(draw(1, 4)));
        m_out += ",\"outpoint\":" + (draw(0, 1) ? seconds(600000) : "null");
        m_out += std::string(",\"scaleMode\":\"") + pick(scales) + "\",\"type\":\"";
        m_out += sequence        ? "imageSequence\"}"
                 : still         ? "imageFile\"}"
                 : kind == "wav" ? "audioFile\"}"
                                 : "videoFile\"}";
    }

    void addEntry(int entry)
    {
        static constexpr std::array<const char*, 4> ends = {"next", "stop", "pause", "repeat"};
        static constexpr std::array<const char*, 3> transitions = {"directCut", "crossfade", "dipToColor"};
        if (entry % m_shape.perPlaylist == 0) {
            const std::string number = std::to_string(entry / m_shape.perPlaylist + 1);
            m_out += (entry ? "}}," : "") + quoted(number) + ":{\"name\":\"Playlist " + number +
                     "\",\"entries\":{";
            m_major = m_minor = 0;
        } else {
            m_out += ',';
        }
        const bool between = m_major > 0 && draw(0, 3) == 0;
        m_minor = between ? m_minor + 1 : 0;
        m_major += between ? 0 : 1;
        m_out += '"' + std::to_string(m_major) + (m_minor ? "." + std::to_string(m_minor) : std::string());
        m_out += std::string("\":{\"endAction\":\"") + pick(ends) + "\",\"slotUrl\":";
        m_out += quoted(m_urls[static_cast<std::size_t>(draw(0, m_shape.slots - 1))]);
        m_out += ",\"transitionDuration\":" + seconds(5000);
        m_out += std::string(",\"transitionType\":\"") + pick(transitions) + "\"}";
    }

    LibraryShape m_shape;
    std::mt19937 m_random{20240601};
    std::vector<std::string> m_urls;
    std::string m_out;
    int m_major = 0;
    int m_minor = 0;
};

/// Bytes that the program holds on the heap now.
inline double heapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

/// Seconds that f takes: the best of some runs, since what disturbs a run only ever adds.
template <typename F>
double bestOf(int runs, F&& f)
{
    double best = 1e99;
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        f();
        best =
            std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

/// One line of the result. Ratio: the better, the larger.
inline void report(const std::string& name, const char* peer, double ours, double theirs, const char* unit,
                   double ratio, double goal)
{
    std::printf(
        "{\"name\":\"%s\",\"peer\":\"%s\",\"ours\":%.6g,\"theirs\":%.6g,\"unit\":\"%s\",\"ratio\":%.4g,"
        "\"goal\":%.4g,\"met\":%s}\n",
        name.c_str(), peer, ours, theirs, unit, ratio, goal, ratio >= goal ? "true" : "false");
    std::fflush(stdout);
}

inline std::vector<LibraryShape> libraryShapes()
{
    std::vector<LibraryShape> shapes;
    for (const int slots : {1000, 10000, 100000}) {
        shapes.push_back({slots, 100});
        shapes.push_back({slots, 0});
    }
    return shapes;
}

} // namespace vantrel::bench
