#include "ombra/display/machineoutputs.h"

#include "ombra/display/randr.h"

#include <cstdlib>

namespace vantrel::ombra {

namespace {

using namespace std::chrono_literals;

/// How often a desktop is looked for, and asked whatever it tells by itself.
constexpr auto lookAgainAfter = 1s;

/// "DISPLAY" of this machine, and not of one at the other end of a network.
bool isDesktopHere()
{
    const char* display = std::getenv("DISPLAY");
    return display && display[0] == ':';
}

} // namespace

/// What the thread does: it outlives MachineOutputs where a desktop hangs.
struct MachineOutputs::Watch
{
    std::filesystem::path drm;

    std::mutex listenerMutex;
    std::function<void(Connectors)> listener;

    std::mutex mutex;
    std::condition_variable change;
    std::optional<Connectors> found;
    bool isStopped = false;

    // Of the thread:
    std::unique_ptr<Randr> desktop; // the first that there is

    void run();
    Connectors read();
    void tell(Connectors now);
    void pause();
    bool mustStop()
    {
        const std::lock_guard lock(mutex);
        return isStopped;
    }
};

void MachineOutputs::Watch::run()
{
    while (!mustStop()) {
        tell(read());
        pause();
    }
}

/// Where a desktop has ended what it said last is what is known: whose the console is then is not for us to
/// say.
MachineOutputs::Connectors MachineOutputs::Watch::read()
{
    if (!desktop)
        desktop = Randr::open();
    if (!desktop)
        return readDrmFolder(drm);
    Connectors connectors = desktop->connectors();
    if (desktop->isLost())
        return found.value_or(Connectors());
    for (Connector& one : connectors) {
        if (one.isConnected && one.edid.empty() && isDesktopHere())
            one.edid = drmEdid(drm, one.name);
    }
    return connectors;
}

void MachineOutputs::Watch::tell(Connectors now)
{
    {
        const std::lock_guard lock(mutex);
        if (found == now)
            return;
        found = now;
    }
    change.notify_all();
    const std::lock_guard lock(listenerMutex);
    if (listener)
        listener(std::move(now));
}

void MachineOutputs::Watch::pause()
{
    if (desktop && !desktop->isLost())
        return desktop->waitForChange(lookAgainAfter);
    std::unique_lock lock(mutex);
    change.wait_for(lock, lookAgainAfter, [this] { return isStopped; });
}

MachineOutputs::MachineOutputs(std::filesystem::path drm)
    : m_watch(std::make_shared<Watch>())
{
    m_watch->drm = std::move(drm);
    std::thread([watch = m_watch] { watch->run(); }).detach();
}

MachineOutputs::~MachineOutputs()
{
    setListener({});
    {
        const std::lock_guard lock(m_watch->mutex);
        m_watch->isStopped = true;
    }
    m_watch->change.notify_all();
}

MachineOutputs::Connectors MachineOutputs::first(std::chrono::milliseconds patience) const
{
    std::unique_lock lock(m_watch->mutex);
    m_watch->change.wait_for(lock, patience, [this] { return m_watch->found.has_value(); });
    return m_watch->found.value_or(Connectors());
}

void MachineOutputs::setListener(std::function<void(Connectors)> listener)
{
    const std::lock_guard lock(m_watch->listenerMutex);
    m_watch->listener = std::move(listener);
}

} // namespace vantrel::ombra
