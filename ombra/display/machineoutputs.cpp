#include "ombra/display/machineoutputs.h"

#include "ombra/display/randr.h"

#include <cstdlib>
#include <deque>
#include <sys/eventfd.h>
#include <unistd.h>

namespace vantrel::ombra {

namespace {

using namespace std::chrono_literals;

/// How often a desktop is looked for, and asked whatever it tells by itself.
constexpr auto lookAgainAfter = 1s;
/// How long a stop waits for the desktop, which may hang, and where its outputs are to get their modes back.
constexpr std::chrono::milliseconds stopsWithin = 200ms, restoresWithin = 2s;

/// "DISPLAY" of this machine, and not of one at the other end of a network.
bool isDesktopHere()
{
    const char* display = std::getenv("DISPLAY");
    return display && display[0] == ':';
}

} // namespace

struct Wish
{
    std::string connector;
    VideoTiming mode;
    MachineOutputs::Answer answer;
};

/// What the thread does: it outlives MachineOutputs where a desktop hangs.
struct MachineOutputs::Watch
{
    const std::filesystem::path drm;
    const ModeMemory memory;

    std::mutex listenerMutex;
    std::function<void(Connectors)> listener;

    std::mutex mutex;
    mutable std::condition_variable change;
    std::optional<Connectors> found;
    std::deque<Wish> wishes;
    bool isStopped = false, isEnded = false, hasOurs = false;
    const int wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);

    // Of the thread:
    std::unique_ptr<Randr> desktop; // the first that there is

    Watch(std::filesystem::path drmFolder, const std::filesystem::path& modes)
        : drm(std::move(drmFolder))
        , memory(modes)
    {
    }
    ~Watch() { close(wake); }
    void wakeUp() const
    {
        change.notify_all();
        eventfd_write(wake, 1);
    }
    void run();
    void fulfil(const Wish& wish);
    std::optional<Wish> nextWish();
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
        while (const auto wish = nextWish())
            fulfil(*wish);
    }
    if (desktop && !desktop->isLost())
        desktop->restoreModes();
    const std::lock_guard lock(mutex);
    isEnded = true;
    change.notify_all();
}

std::optional<Wish> MachineOutputs::Watch::nextWish()
{
    const std::lock_guard lock(mutex);
    if (wishes.empty() || isStopped)
        return std::nullopt;
    Wish wish = std::move(wishes.front());
    wishes.pop_front();
    hasOurs = true; // from here on there may be something to take back
    return wish;
}

void MachineOutputs::Watch::fulfil(const Wish& wish)
{
    std::string why = "No desktop runs there that could change the mode of " + wish.connector +
                      ": the kernel gives a console its mode when the machine starts.";
    if (desktop && !desktop->isLost() && desktop->setMode(wish.connector, wish.mode, &why))
        why.clear();
    const std::lock_guard lock(mutex); // who asked is there until this is stopped
    if (!isStopped)
        wish.answer(why);
}

/// Where a desktop has ended what it said last is what is known: whose the console is then is not for us to
/// say.
MachineOutputs::Connectors MachineOutputs::Watch::read()
{
    if (!desktop)
        desktop = Randr::open(memory);
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
    if (desktop && !desktop->isLost()) {
        desktop->waitForChange(lookAgainAfter, wake);
        eventfd_t ignored = 0;
        eventfd_read(wake, &ignored);
        return;
    }
    std::unique_lock lock(mutex);
    change.wait_for(lock, lookAgainAfter, [this] { return isStopped || !wishes.empty(); });
}

MachineOutputs::MachineOutputs(std::filesystem::path drm, const std::filesystem::path& modes)
    : m_watch(std::make_shared<Watch>(std::move(drm), modes))
{
    std::thread([watch = m_watch] { watch->run(); }).detach();
}

MachineOutputs::~MachineOutputs()
{
    setListener({});
    std::unique_lock lock(m_watch->mutex);
    m_watch->isStopped = true;
    m_watch->wakeUp();
    const auto patience = m_watch->hasOurs ? restoresWithin : stopsWithin;
    m_watch->change.wait_for(lock, patience, [this] { return m_watch->isEnded; });
}

void MachineOutputs::setMode(std::string connector, const VideoTiming& mode, Answer answer)
{
    const std::lock_guard lock(m_watch->mutex);
    m_watch->wishes.push_back({std::move(connector), mode, std::move(answer)});
    m_watch->wakeUp();
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
