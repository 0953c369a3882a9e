#pragma once

#include "ombra/display/modememory.h"
#include "ombra/outputs/connector.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// The connectors of a desktop's machine, by RandR over a connection of its own. One thread; what it asks
/// takes as long as the desktop takes to answer.
class Randr
{
public:
    /// Null where there is no desktop of X, or one whose RandR is older than 1.3. What a run before left of
    /// its modes is given back at once.
    static std::unique_ptr<Randr> open(const ModeMemory& memory);
    ~Randr();
    Randr(const Randr&) = delete;

    /// The desktop's own first one comes first, then the others that have a display, then the rest.
    std::vector<Connector> connectors();
    /// Gives an output another mode, which is made where the driver does not list it. False, with a sentence,
    /// where it is not taken.
    bool setMode(const std::string& output, const VideoTiming& mode, std::string* why);
    /// Those from before the first setMode().
    void restoreModes();
    /// Waits until something of them may have changed, or the file descriptor has something.
    void waitForChange(std::chrono::milliseconds patience, int wake);
    /// The desktop has ended: nothing more can be asked of it.
    bool isLost() const;

private:
    struct Impl;
    explicit Randr(std::unique_ptr<Impl> impl);

    std::unique_ptr<Impl> m_impl;
};

} // namespace vantrel::ombra
