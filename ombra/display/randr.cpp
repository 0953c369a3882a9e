#include "ombra/display/randr.h"

#include "ombra/display/connectionloss.h"
#include "ombra/display/randrhandles.h"
#include "ombra/display/randrlayout.h"

#include <X11/Xatom.h>
#include <algorithm>
#include <cstring>
#include <poll.h>
#include <tuple>

namespace vantrel::ombra {

namespace {

constexpr std::size_t connectorsAtMost = 64, modesAtMost = 256;
constexpr long edidWords = 32768 / 4;
constexpr int largestSide = 32767; // pixels, of what X knows

} // namespace

std::string randrName(const char* name, int length)
{
    constexpr int longest = 64;
    std::string text(name, static_cast<std::size_t>(std::clamp(length, 0, longest)));
    std::ranges::replace_if(
        text, [](char one) { return one < ' ' || one > '~'; }, '?');
    return text;
}

std::optional<VideoTiming> randrTiming(const XRRModeInfo& mode)
{
    const auto isSide = [](unsigned long long side) { return side > 0 && side <= largestSide; };
    if (!isSide(mode.width) || !isSide(mode.height))
        return std::nullopt;
    VideoTiming timing;
    timing.width = static_cast<int>(mode.width);
    timing.height = static_cast<int>(mode.height);
    timing.interlaced = mode.modeFlags & RR_Interlace;
    timing.hPolarity = timing.vPolarity = 0;
    // What has no tube and no wire behind it names its size alone.
    const bool isWhole = mode.hTotal > mode.width && mode.vTotal > mode.height && isSide(mode.hTotal) &&
                         isSide(mode.vTotal) && mode.dotClock > 0 && mode.hSyncStart >= mode.width &&
                         mode.hSyncEnd >= mode.hSyncStart && mode.hTotal >= mode.hSyncEnd &&
                         mode.vSyncStart >= mode.height && mode.vSyncEnd >= mode.vSyncStart &&
                         mode.vTotal >= mode.vSyncEnd && !(mode.modeFlags & RR_DoubleScan);
    if (!isWhole)
        return timing;
    const int fields = timing.interlaced ? 2 : 1;
    timing.hTotal = static_cast<int>(mode.hTotal);
    timing.vTotal = static_cast<int>(mode.vTotal);
    timing.hFront = static_cast<int>(mode.hSyncStart - mode.width);
    timing.hSync = static_cast<int>(mode.hSyncEnd - mode.hSyncStart);
    timing.vFront = static_cast<int>(mode.vSyncStart - mode.height) / fields;
    timing.vSync = static_cast<int>(mode.vSyncEnd - mode.vSyncStart) / fields;
    timing.hPolarity = mode.modeFlags & RR_HSyncNegative ? -1 : 1;
    timing.vPolarity = mode.modeFlags & RR_VSyncNegative ? -1 : 1;
    timing.dotClock = static_cast<std::int64_t>(mode.dotClock);
    return timing;
}

const XRRModeInfo* randrMode(const XRRScreenResources& all, RRMode id)
{
    for (int i = 0; i < all.nmode; ++i) {
        if (all.modes[i].id == id)
            return &all.modes[i];
    }
    return nullptr;
}

struct Randr::Impl
{
    ::Display* display = nullptr;
    ::Window root = 0;
    DesktopConnection connection;
    std::optional<RandrLayout> layout;

    std::string edidOf(RROutput output) const;
    void readModes(const XRRScreenResources& all, const XRROutputInfo& info, Connector& out) const;
    void readCrtc(XRRScreenResources& all, RRCrtc crtc, Connector& out) const;
    RandrResources resources() const { return RandrResources(XRRGetScreenResourcesCurrent(display, root)); }
};

std::string Randr::Impl::edidOf(RROutput output) const
{
    static constexpr char digits[] = "0123456789abcdef";
    const Atom property = XInternAtom(display, "EDID", True);
    if (property == None)
        return {};
    Atom type = None;
    int format = 0;
    unsigned long count = 0, rest = 0;
    unsigned char* bytes = nullptr;
    const int result = XRRGetOutputProperty(display, output, property, 0, edidWords, False, False,
                                            AnyPropertyType, &type, &format, &count, &rest, &bytes);
    std::string hex;
    for (unsigned long i = 0; result == Success && bytes && format == 8 && i < count; ++i) {
        hex += digits[bytes[i] >> 4];
        hex += digits[bytes[i] & 15];
    }
    if (bytes)
        XFree(bytes);
    return hex;
}

void Randr::Impl::readModes(const XRRScreenResources& all, const XRROutputInfo& info, Connector& out) const
{
    for (int i = 0; i < info.nmode && out.modes.size() < modesAtMost; ++i) {
        const XRRModeInfo* mode = randrMode(all, info.modes[i]);
        const auto timing = mode ? randrTiming(*mode) : std::nullopt;
        if (!timing || timing->dotClock <= 0)
            continue;
        if (i < info.npreferred && !out.preferred)
            out.preferred = timing;
        out.modes.push_back(*timing);
    }
}

void Randr::Impl::readCrtc(XRRScreenResources& all, RRCrtc crtc, Connector& out) const
{
    const RandrCrtc info(XRRGetCrtcInfo(display, &all, crtc));
    const XRRModeInfo* mode = info ? randrMode(all, info->mode) : nullptr;
    if (!mode || info->width < 1 || info->height < 1)
        return;
    out.mode = randrTiming(*mode);
    out.isOn = true;
    out.area = {info->x, info->y, static_cast<int>(info->width), static_cast<int>(info->height)};
}

Randr::Randr(std::unique_ptr<Impl> impl)
    : m_impl(std::move(impl))
{
}

Randr::~Randr()
{
    if (!isLost())
        XCloseDisplay(m_impl->display);
    else
        std::ignore = m_impl.release(); // it is still known to the connection
}

std::unique_ptr<Randr> Randr::open(const ModeMemory& memory)
{
    auto impl = std::make_unique<Impl>();
    XInitThreads(); // beside the thread that has the windows
    impl->display = XOpenDisplay(nullptr);
    if (!impl->display)
        return nullptr;
    surviveLoss(impl->display, impl->connection);
    impl->root = DefaultRootWindow(impl->display);
    impl->layout.emplace(impl->display, impl->root, memory);
    int base = 0, error = 0, major = 0, minor = 0;
    std::unique_ptr<Randr> randr(new Randr(std::move(impl)));
    ::Display* display = randr->m_impl->display;
    if (!XRRQueryExtension(display, &base, &error) || !XRRQueryVersion(display, &major, &minor) ||
        std::tie(major, minor) < std::make_tuple(1, 3))
        return nullptr;
    XRRSelectInput(display, randr->m_impl->root,
                   RRScreenChangeNotifyMask | RRCrtcChangeNotifyMask | RROutputChangeNotifyMask |
                       RROutputPropertyNotifyMask);
    randr->m_impl->layout->restoreLeftOver();
    return randr;
}

std::vector<Connector> Randr::connectors()
{
    const RandrResources all = m_impl->resources();
    if (!all || isLost())
        return {};
    const RROutput primary = XRRGetOutputPrimary(m_impl->display, m_impl->root);
    std::vector<std::pair<int, Connector>> found; // with their rank
    for (int i = 0; i < all->noutput && found.size() < connectorsAtMost; ++i) {
        const RandrOutput info(XRRGetOutputInfo(m_impl->display, all.get(), all->outputs[i]));
        if (!info)
            continue;
        Connector one;
        one.name = randrName(info->name, info->nameLen);
        one.isConnected = info->connection == RR_Connected;
        if (one.isConnected) {
            one.edid = m_impl->edidOf(all->outputs[i]);
            m_impl->readModes(*all, *info, one);
            if (info->crtc != None)
                m_impl->readCrtc(*all, info->crtc, one);
        }
        const int rank = !one.isConnected ? 3 : !one.isOn ? 2 : all->outputs[i] == primary ? 0 : 1;
        const bool isNew =
            std::ranges::none_of(found, [&one](const auto& other) { return other.second.name == one.name; });
        if (isNew && !one.name.empty())
            found.emplace_back(rank, std::move(one));
    }
    if (isLost())
        return {};
    std::ranges::stable_sort(found, {}, &std::pair<int, Connector>::first);
    std::vector<Connector> connectors;
    for (auto& [rank, one] : found) {
        one.screen = static_cast<int>(connectors.size());
        connectors.push_back(std::move(one));
    }
    return connectors;
}

bool Randr::setMode(const std::string& output, const VideoTiming& mode, std::string* why)
{
    return m_impl->layout->setMode(output, mode, why);
}

void Randr::restoreModes()
{
    m_impl->layout->restore();
}

void Randr::waitForChange(std::chrono::milliseconds patience, int wake)
{
    pollfd sockets[] = {{ConnectionNumber(m_impl->display), POLLIN, 0}, {wake, POLLIN, 0}};
    if (!XPending(m_impl->display))
        poll(sockets, 2, static_cast<int>(patience.count()));
    while (!isLost() && XPending(m_impl->display)) {
        XEvent event;
        XNextEvent(m_impl->display, &event);
        XRRUpdateConfiguration(&event);
    }
}

bool Randr::isLost() const
{
    return m_impl->connection.isLost;
}

} // namespace vantrel::ombra
