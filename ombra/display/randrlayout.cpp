#include "ombra/display/randrlayout.h"

#include "ombra/base/fail.h"
#include "ombra/display/randrhandles.h"
#include "tarn/log/log.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

namespace vantrel::ombra {

namespace {

/// The server that a layout is changed on listens to nobody else meanwhile.
class Grab
{
public:
    explicit Grab(::Display* display)
        : m_display(display)
    {
        XGrabServer(display);
    }
    ~Grab()
    {
        XUngrabServer(m_display);
        XSync(m_display, False);
    }
    Grab(const Grab&) = delete;

private:
    ::Display* m_display;
};

constexpr std::string_view ours = "ombra-"; // the names of modes that were made here

bool isOurs(const XRRModeInfo& mode)
{
    return mode.name && std::string_view(mode.name, mode.nameLength).starts_with(ours);
}

XRRModeInfo modeInfo(const VideoTiming& mode, std::string& name)
{
    const unsigned fields = mode.interlaced ? 2 : 1;
    XRRModeInfo info = {};
    info.width = static_cast<unsigned>(mode.width);
    info.height = static_cast<unsigned>(mode.height);
    info.dotClock = static_cast<unsigned long>(mode.dotClock);
    info.hSyncStart = static_cast<unsigned>(mode.width + mode.hFront);
    info.hSyncEnd = info.hSyncStart + static_cast<unsigned>(mode.hSync);
    info.hTotal = static_cast<unsigned>(mode.hTotal);
    info.vSyncStart = info.height + static_cast<unsigned>(mode.vFront) * fields;
    info.vSyncEnd = info.vSyncStart + static_cast<unsigned>(mode.vSync) * fields;
    info.vTotal = static_cast<unsigned>(mode.vTotal);
    info.modeFlags = static_cast<XRRModeFlags>((mode.hPolarity < 0 ? RR_HSyncNegative : RR_HSyncPositive) |
                                               (mode.vPolarity < 0 ? RR_VSyncNegative : RR_VSyncPositive) |
                                               (mode.interlaced ? RR_Interlace : 0));
    info.name = name.data();
    info.nameLength = static_cast<unsigned>(name.size());
    return info;
}

} // namespace

RandrLayout::RandrLayout(_XDisplay* display, unsigned long root, ModeMemory memory)
    : m_display(display)
    , m_root(root)
    , m_memory(std::move(memory))
{
}

RandrLayout::Parts RandrLayout::parts() const
{
    Parts found;
    const RandrResources all(XRRGetScreenResourcesCurrent(m_display, m_root));
    for (int i = 0; all && i < all->ncrtc; ++i) {
        const RandrCrtc crtc(XRRGetCrtcInfo(m_display, all.get(), all->crtcs[i]));
        if (crtc && crtc->mode != None && crtc->noutput > 0)
            found.push_back({all->crtcs[i],
                             crtc->mode,
                             {crtc->outputs, crtc->outputs + crtc->noutput},
                             crtc->rotation,
                             crtc->x,
                             crtc->y,
                             static_cast<int>(crtc->width),
                             static_cast<int>(crtc->height)});
    }
    return found;
}

unsigned long RandrLayout::outputNamed(const std::string& name) const
{
    const RandrResources all(XRRGetScreenResourcesCurrent(m_display, m_root));
    for (int i = 0; all && i < all->noutput; ++i) {
        const RandrOutput info(XRRGetOutputInfo(m_display, all.get(), all->outputs[i]));
        if (info && randrName(info->name, info->nameLen) == name)
            return all->outputs[i];
    }
    return None;
}

bool RandrLayout::setMode(const std::string& output, const VideoTiming& mode, std::string* why)
{
    const RROutput id = outputNamed(output);
    const Parts now = parts();
    const Part* part = partOf(now, id);
    if (id == None || !part)
        return fail(why, output + " is switched off in the desktop's settings, and has no mode so far.");
    const RandrResources all(XRRGetScreenResourcesCurrent(m_display, m_root));
    const XRRModeInfo* present = all ? randrMode(*all, part->mode) : nullptr;
    const auto timing = present ? randrTiming(*present) : std::nullopt;
    const std::vector<Former> before = m_before;
    auto former = std::ranges::find(m_before, id, &Former::output);
    if (former == m_before.end())
        former = m_before.insert(
            former,
            {id, part->mode, part->width, part->height, {output, timing.value_or(VideoTiming()), {}}});
    former->change.given = mode;
    remember();
    if (give(id, mode, why))
        return true;
    m_before = before;
    remember();
    return false;
}

void RandrLayout::remember() const
{
    std::vector<ModeMemory::Change> changes;
    for (const Former& former : m_before)
        changes.push_back(former.change);
    m_memory.write(changes);
}

bool RandrLayout::give(unsigned long output, const VideoTiming& mode, std::string* why)
{
    const Parts now = parts();
    const Part* part = partOf(now, output);
    const RandrResources all(XRRGetScreenResourcesCurrent(m_display, m_root));
    const RandrOutput info(all ? XRRGetOutputInfo(m_display, all.get(), output) : nullptr);
    if (!part || !info)
        return fail(why, "The desktop has that output no more.");
    const std::string on = mode.label() + " on " + randrName(info->name, info->nameLen) + ".";
    const RRMode wanted = modeFor(output, mode);
    if (wanted == None)
        return fail(why, "The graphics driver does not offer " + on);
    const bool isTurned = part->rotation & (RR_Rotate_90 | RR_Rotate_270);
    return change(output, wanted, isTurned ? mode.height : mode.width, isTurned ? mode.width : mode.height) ||
           fail(why, "The graphics driver does not take " + on);
}

const RandrLayout::Part* RandrLayout::partOf(const Parts& parts, unsigned long output)
{
    const auto part = std::ranges::find_if(parts, [output](const Part& one) {
        return std::ranges::find(one.outputs, output) != one.outputs.end();
    });
    return part == parts.end() ? nullptr : &*part;
}

/// What lies beside it moves by as much as it grows.
bool RandrLayout::change(unsigned long output, unsigned long mode, int width, int height)
{
    const Parts from = parts();
    const Part* part = partOf(from, output);
    if (!part)
        return false;
    Parts to = from;
    for (Part& other : to) {
        if (other.x >= part->x + part->width)
            other.x += width - part->width;
        if (other.y >= part->y + part->height)
            other.y += height - part->height;
    }
    Part& changed = to[static_cast<std::size_t>(part - from.data())];
    changed.mode = mode;
    changed.width = width;
    changed.height = height;
    const bool isDone = apply(from, to);
    if (!isDone)
        apply(to, from);
    return isDone;
}

/// What changes is off while the desktop takes its new size, which must hold all that is on at any time.
bool RandrLayout::apply(const Parts& from, const Parts& to)
{
    const Grab grab(m_display);
    const auto stays = [](const Part& one, const Parts& among) {
        return std::ranges::find(among, one) != among.end();
    };
    for (const Part& part : from) {
        if (!stays(part, to))
            clearPart(part);
    }
    setSize(to);
    bool isDone = true;
    for (const Part& part : to) {
        if (!stays(part, from))
            isDone = setPart(part) && isDone;
    }
    return isDone;
}

bool RandrLayout::setPart(const Part& part)
{
    const RandrResources all(XRRGetScreenResourcesCurrent(m_display, m_root));
    std::vector<RROutput> outputs(part.outputs);
    return all && XRRSetCrtcConfig(m_display, all.get(), part.crtc, CurrentTime, part.x, part.y, part.mode,
                                   part.rotation, outputs.data(),
                                   static_cast<int>(outputs.size())) == RRSetConfigSuccess;
}

void RandrLayout::clearPart(const Part& part)
{
    if (const RandrResources all(XRRGetScreenResourcesCurrent(m_display, m_root)); all)
        XRRSetCrtcConfig(m_display, all.get(), part.crtc, CurrentTime, 0, 0, None, RR_Rotate_0, nullptr, 0);
}

/// With the pixels as large as they were.
void RandrLayout::setSize(const Parts& parts)
{
    int width = 1, height = 1, least = 0, most = 0, leastHeight = 0, mostHeight = 0;
    for (const Part& part : parts) {
        width = std::max(width, part.x + part.width);
        height = std::max(height, part.y + part.height);
    }
    if (!XRRGetScreenSizeRange(m_display, m_root, &least, &leastHeight, &most, &mostHeight))
        return;
    width = std::clamp(width, least, std::max(least, most));
    height = std::clamp(height, leastHeight, std::max(leastHeight, mostHeight));
    const int screen = DefaultScreen(m_display);
    const double mmEach = DisplayWidth(m_display, screen) > 0
                              ? double(DisplayWidthMM(m_display, screen)) / DisplayWidth(m_display, screen)
                              : 0.265;
    XRRSetScreenSize(m_display, m_root, width, height, std::max(1, int(std::lround(width * mmEach))),
                     std::max(1, int(std::lround(height * mmEach))));
}

/// One that the driver offers there, or that it is to take as ours.
unsigned long RandrLayout::modeFor(unsigned long output, const VideoTiming& mode)
{
    const RandrResources all(XRRGetScreenResourcesCurrent(m_display, m_root));
    const RandrOutput info(all ? XRRGetOutputInfo(m_display, all.get(), output) : nullptr);
    RRMode near = None;
    for (int i = 0; info && i < info->nmode; ++i) {
        const XRRModeInfo* one = randrMode(*all, info->modes[i]);
        const auto timing = one ? randrTiming(*one) : std::nullopt;
        if (timing == mode)
            return one->id;
        if (timing && timing->id() == mode.id() && near == None)
            near = one->id;
    }
    return near != None ? near : makeMode(output, mode);
}

unsigned long RandrLayout::makeMode(unsigned long output, const VideoTiming& mode)
{
    std::string name = std::string(ours) + mode.id();
    const RandrResources all(XRRGetScreenResourcesCurrent(m_display, m_root));
    RRMode id = None;
    for (int i = 0; all && i < all->nmode; ++i) {
        const XRRModeInfo& one = all->modes[i];
        if (one.name && std::string(one.name, one.nameLength) == name) // of a run before, that was killed
            id = one.id;
    }
    if (id == None) {
        XRRModeInfo info = modeInfo(mode, name);
        id = XRRCreateMode(m_display, m_root, &info);
    }
    if (id == None)
        return None;
    XRRAddOutputMode(m_display, output, id);
    m_made.emplace_back(output, id);
    return id;
}

void RandrLayout::restore()
{
    for (const Former& former : m_before)
        change(former.output, former.mode, former.width, former.height);
    m_before.clear();
    for (const auto& [output, mode] : m_made) {
        XRRDeleteOutputMode(m_display, output, mode);
        XRRDestroyMode(m_display, mode);
    }
    m_made.clear();
    XSync(m_display, False);
    remember();
}

/// An output that has another mode by now was given it by somebody else, or by a machine that started anew.
void RandrLayout::restoreLeftOver()
{
    for (const ModeMemory::Change& left : m_memory.read()) {
        const RROutput output = outputNamed(left.output);
        const Parts now = parts();
        const Part* part = output == None ? nullptr : partOf(now, output);
        const RandrResources all(XRRGetScreenResourcesCurrent(m_display, m_root));
        const XRRModeInfo* present = part && all ? randrMode(*all, part->mode) : nullptr;
        const auto timing = present ? randrTiming(*present) : std::nullopt;
        if (!timing || timing->id() != left.given.id() || left.before.width < 1)
            continue;
        if (isOurs(*present))
            m_made.emplace_back(output, present->id);
        std::string why;
        const bool isDone = give(output, left.before, &why);
        Log::write(isDone ? LogLevel::Info : LogLevel::Warning, "vantrel.display",
                   isDone ? left.output + " has " + left.before.label() +
                                " again, which it had before ombra was killed"
                          : why + " It keeps the mode that it was given before ombra was killed.");
    }
    remember();
}

} // namespace vantrel::ombra
