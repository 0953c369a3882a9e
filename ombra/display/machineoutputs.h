#pragma once

#include "ombra/display/drmfolder.h"
#include "ombra/outputs/connector.h"

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace vantrel::ombra {

class Randr;

/// The connectors of this machine: those that its desktop tells of, or without one those of the kernel. A
/// thread of its own asks, since a desktop may take its time or hang, and outlives this where it does. Any
/// thread.
class MachineOutputs
{
public:
    using Connectors = std::vector<Connector>;

    /// modes: a file for those that were changed, which outlives this where it is killed; empty for none.
    explicit MachineOutputs(std::filesystem::path drm, const std::filesystem::path& modes = {});
    ~MachineOutputs();
    MachineOutputs(const MachineOutputs&) = delete;

    /// As they were found first; none where nothing is known in time.
    Connectors first(std::chrono::milliseconds patience) const;
    /// Told whenever something is another than it was told last, on the thread that asks. After this returns
    /// the one before is not called any more.
    void setListener(std::function<void(Connectors)> listener);
    /// Gives a connector another mode, which it has until this goes. answer: told on the thread that asks,
    /// with a sentence where it was not done.
    using Answer = std::function<void(const std::string& why)>;
    void setMode(std::string connector, const VideoTiming& mode, Answer answer);

private:
    struct Watch;

    std::shared_ptr<Watch> m_watch;
};

} // namespace vantrel::ombra
