#pragma once

#include "ombra/base/asidethread.h"
#include "tarn/json/json.h"
#include "tarn/scene/scene.h"

#include <atomic>
#include <filesystem>
#include <map>
#include <string>

namespace vantrel::ombra {

/// Seconds into their media, by path of the playback.
using Positions = std::map<std::string, double>;

/// Where what plays stands at the moment.
Positions positionsOf(const Scene& scene);

/// Where what plays stood last, in a file of the state folder: a server that died, or whose machine did, goes
/// on from there. It is no part of the show and not worth a wait for the disk: each second's is written
/// aside, and left out while the one before is on its way. The thread of the scene.
class PlayPositions
{
public:
    explicit PlayPositions(const std::filesystem::path& stateFolder);

    /// Of those that have the same media in the settings. What is older than ten minutes counts no more:
    /// nobody waits for the rest of a film any longer.
    Positions stood(const Json& settings) const;
    /// To be called each second.
    void keep(const Scene& scene);

private:
    const std::filesystem::path m_file;
    std::atomic<bool> m_isWriting{false};
    bool m_hasPlayed = false; // the file tells of something of this run
    AsideThread m_disk;       // last: it uses the above
};

} // namespace vantrel::ombra
