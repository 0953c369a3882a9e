#include "ombra/show/playpositions.h"

#include "ombra/base/atomicfile.h"
#include "tarn/media/playenums.h"

#include <boost/asio/post.hpp>

#include <chrono>
#include <fstream>

namespace vantrel::ombra {

namespace {

constexpr double lastsFor = 600; // seconds
constexpr std::size_t fileAtMost = 65536;

double wallTime()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::string mediaPath(const std::string& playback)
{
    return playback + "/properties/media";
}

/// No fsync: the process may die at any time, and then the system has what it wrote.
void write(const std::filesystem::path& file, const std::string& text)
{
    std::filesystem::path fresh = file;
    fresh += ".new";
    std::ofstream out(fresh, std::ios::trunc);
    out << text;
    out.close();
    std::error_code ignored; // the next second tries again
    if (out)
        std::filesystem::rename(fresh, file, ignored);
}

} // namespace

Positions positionsOf(const Scene& scene)
{
    Positions positions;
    for (const char* side : {"/device/channels/0/preview", "/device/channels/0/program"}) {
        const Object* playback = scene.findObject(side);
        Variant state, position;
        if (playback && playback->getProperty("state", state) &&
            state.as<SourcePlayState>() == SourcePlayState::Play &&
            playback->getProperty("mediaPosition", position))
            positions[side] = position.as<double>();
    }
    return positions;
}

PlayPositions::PlayPositions(const std::filesystem::path& stateFolder)
    : m_file(stateFolder / "positions.json")
{
}

Positions PlayPositions::stood(const Json& settings) const
{
    Positions positions;
    Json kept;
    const auto text = readWholeFile(m_file, fileAtMost, nullptr);
    if (!text || !Json::parseString(*text, kept))
        return positions;
    const double age = wallTime() - kept.get("time").asDouble();
    if (age < 0 || age > lastsFor)
        return positions;
    kept.get("playing").forEachMember([&](std::string_view playback, const Json& stood) {
        const std::string path(playback);
        if (stood.get("media") == settings.get(mediaPath(path)))
            positions[path] = stood.get("position").asDouble();
        return true;
    });
    return positions;
}

void PlayPositions::keep(const Scene& scene)
{
    const Positions positions = positionsOf(scene);
    if ((positions.empty() && !m_hasPlayed) || m_isWriting.exchange(true))
        return;
    m_hasPlayed = !positions.empty();
    Json playing = Json::object();
    for (const auto& [playback, position] : positions) {
        Variant media;
        scene.findObject(playback)->getProperty("media", media);
        playing.set(playback, Json::object({{"media", media.as<std::string>()}, {"position", position}}));
    }
    const Json kept = Json::object({{"time", wallTime()}, {"playing", playing}});
    boost::asio::post(m_disk, [this, text = kept.toString()] {
        write(m_file, text);
        m_isWriting = false;
    });
}

} // namespace vantrel::ombra
