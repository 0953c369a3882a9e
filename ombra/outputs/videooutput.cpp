#include "ombra/outputs/videooutput.h"

#include "ombra/base/fail.h"
#include "ombra/outputs/sceneaccess.h"
#include "ombra/outputs/standardmodes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace vantrel::ombra {

namespace {

Json modelineJson(const std::string& id, const VideoTiming& timing, bool isStandard)
{
    return Json::object({{"type", "Modeline"},
                         {"properties", Json::object({{"id", id},
                                                      {"label", timing.label()},
                                                      {"width", timing.width},
                                                      {"height", timing.height},
                                                      {"standard", isStandard},
                                                      {"interlaced", timing.interlaced},
                                                      {"refreshRate", timing.refreshRate()}})}});
}

std::string gigabits(double bits)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f Gbit/s", bits / 1e9);
    return text;
}

/// "1920x1200p59.95" also goes by "1920x1200p60", as shows of earlier versions have it; 59.94 Hz is another
/// mode.
bool isNearly(const std::string& id, const std::string& wanted)
{
    const std::size_t rate = id.find_last_of("pi") + 1;
    return id.compare(0, rate, wanted, 0, rate) == 0 && wanted.size() > rate &&
           std::abs(std::atof(id.c_str() + rate) - std::atof(wanted.c_str() + rate)) < 0.055;
}

} // namespace

VideoOutput::VideoOutput(Scene& scene, int index, std::string name, std::optional<std::string> edid)
    : m_scene(scene)
    , m_index(index)
    , m_name(std::move(name))
    , m_displayEdid(edid.value_or(std::string()))
{
    if (!edid)
        m_real = Connector();
}

Json VideoOutput::toJson() const
{
    return Json::object({{"type", "Output"}, {"properties", Json::object({{"name", m_name}})}});
}

void VideoOutput::start()
{
    readDisplay();
    takeUsual(false);
}

Object* VideoOutput::object() const
{
    return m_scene.findObject("/device/system/gpus/0/outputs/" + std::to_string(m_index));
}

std::optional<Edid> VideoOutput::edidOf(const std::string& hex)
{
    const auto bytes = bytesOfHex(hex);
    Edid edid;
    return bytes && readEdid(*bytes, edid, nullptr) ? std::optional(edid) : std::nullopt;
}

template <typename T>
void VideoOutput::set(const char* property, const T& value)
{
    setProperty(m_scene, object(), property, value);
}

std::string VideoOutput::text(const char* property) const
{
    return propertyOf<std::string>(object(), property);
}

bool VideoOutput::invoke(const std::string& method, const Json& args, bool isSeen, std::string* error)
{
    if (method == "keepMode" || method == "revertMode") {
        if (!m_kept)
            return fail(error, "no mode waits to be kept");
        method == "keepMode" ? keep() : revert();
        return true;
    }
    if (method == "identify")
        return identify(args, error);
    if (method == "selectModeline")
        return change(
            isSeen, [&](std::string* why) { return selectModeline(args, why); }, error);
    if (method == "setEdidOverride")
        return change(
            isSeen, [&](std::string* why) { return setEdidOverride(args, why); }, error);
    if (method == "resetEdid")
        return change(
            isSeen, [&](std::string* why) { return resetEdid(why); }, error);
    return fail(error, "unknown method");
}

/// Does what changes the mode. While one waits to be kept, nothing of it is saved: who starts anew has the
/// mode before.
bool VideoOutput::change(bool isSeen, const Change& act, std::string* error)
{
    const bool begins = isSeen && !m_kept;
    if (begins) {
        m_kept = m_inForce;
        set("confirmSeconds", secondsToKeep);
    }
    std::string why;
    const bool isDone = act(&why);
    tell(why);
    const bool isSame =
        isUnderWayTo(m_inForce.timing) && m_inForce.timing == (m_kept ? m_kept->timing : VideoTiming());
    if (m_kept && (isDone ? isSame : begins)) {
        keep(); // nobody sees a difference
    } else if (m_kept && isDone) {
        m_secondsLeft = secondsToKeep;
        set("confirmSeconds", m_secondsLeft);
    }
    return isDone || fail(error, why);
}

bool VideoOutput::identify(const Json& args, std::string* error)
{
    const bool on = args.get("on").asBool();
    if (on && propertyOf<double>(object(), "screenRate") <= 0)
        return fail(error, "no screen of this machine shows that output");
    set("identified", on);
    return true;
}

bool VideoOutput::isIdentified() const
{
    return propertyOf<bool>(object(), "identified");
}

void VideoOutput::endIdentify()
{
    set("identified", false);
}

bool VideoOutput::selectModeline(const Json& args, std::string* error)
{
    const std::string id(args.get("modelineId").stringView());
    if (id.empty())
        return fail(error, "No \"modelineId\" is given.");
    return take(id, args.get("maxLinkRate").asBool(), error);
}

bool VideoOutput::setEdidOverride(const Json& args, std::string* error)
{
    const std::string edid(args.get("edid").stringView());
    const auto bytes = bytesOfHex(edid);
    Edid read;
    std::string why;
    if (!bytes || !readEdid(*bytes, read, &why))
        return fail(error, "The EDID is not taken. " + (why.empty() ? "It is no hexadecimal text." : why));
    const Settings before = m_inForce;
    set("edidOverride", edid);
    set("edidOverrideFilename", std::string(args.get("filename").stringView()));
    readDisplay();
    const std::string id(args.get("modelineId").stringView());
    const bool maxLinkRate = args.get("maxLinkRate").asBool();
    if (id.empty())
        takeUsual(maxLinkRate);
    else if (!take(id, maxLinkRate, error)) {
        write(before);
        readDisplay();
        return false;
    }
    return true;
}

bool VideoOutput::resetEdid(std::string*)
{
    set("edidOverride", std::string());
    set("edidOverrideFilename", std::string());
    readDisplay();
    takeUsual(false);
    return true;
}

bool VideoOutput::plug(const std::string& edid, std::string* error)
{
    Edid read;
    const auto bytes = bytesOfHex(edid);
    if (!edid.empty() && (!bytes || !readEdid(*bytes, read, error)))
        return bytes ? false : fail(error, "It is no hexadecimal text.");
    m_displayEdid = edid;
    readDisplay();
    // A display that comes back shows what it showed; another one may not have that mode.
    const Mode* mode = find(text("modelineId"));
    if (mode && whyNotTaken(*mode).empty())
        apply(*mode, m_inForce.maxLinkRate);
    else if (m_edid)
        takeUsual(m_inForce.maxLinkRate);
    else
        showLink();
    return true;
}

void VideoOutput::reset()
{
    std::string ignored;
    if (m_real && !m_inForce.modelineId.empty()) {
        write({m_inForce.modelineId, {}, {}, false, {}});
        readDisplay();
        goBackTo(m_beforeOurs.value_or(m_inForce));
    } else {
        resetEdid(&ignored);
    }
    tell({});
    if (m_kept)
        keep();
}

void VideoOutput::resetByClient(bool isSeen)
{
    std::string ignored;
    change(
        isSeen, [this](std::string* why) { return resetEdid(why); }, &ignored);
    if (m_kept && !isSeen)
        keep();
}

void VideoOutput::propertyWritten(const std::string& property, bool isByClient, bool isSeen)
{
    if (property == "edidOverrideFilename")
        m_inForce.edidOverrideFilename = text("edidOverrideFilename");
    if (property != "edidOverride" && property != "modelineId" && property != "maxLinkRate")
        return;
    const Settings wanted{text("modelineId"),
                          text("edidOverride"),
                          text("edidOverrideFilename"),
                          propertyOf<bool>(object(), "maxLinkRate"),
                          {}};
    write(m_inForce); // nothing of it has happened so far
    const bool isLeftToMachine = m_real && !isByClient && wanted.edidOverride.empty();
    if (isLeftToMachine && m_inForce.edidOverride.empty())
        return; // what it was given then is not to be given to it again
    std::string ignored;
    change(
        isSeen,
        [this, &wanted](std::string* why) {
            write(wanted);
            readDisplay();
            if (!m_edid && !wanted.edidOverride.empty()) {
                write(m_inForce);
                readDisplay();
                return fail(why, "The EDID is not taken.");
            }
            if (!take(wanted.modelineId, wanted.maxLinkRate, why))
                m_real ? takeReal() : takeUsual(wanted.maxLinkRate);
            return true;
        },
        &ignored);
    if (m_kept && !isSeen)
        keep(); // what a show has is meant
}

void VideoOutput::secondPassed()
{
    if (!m_kept)
        return;
    if (--m_secondsLeft > 0)
        return set("confirmSeconds", m_secondsLeft);
    const std::string mode = m_inForce.timing.label(), former = m_kept->timing.label();
    revert();
    tell("Nobody kept " + mode + " within " + std::to_string(secondsToKeep) + " seconds, so " + former +
         " is back.");
}

void VideoOutput::tellScreen(const ScreenFigures& lately)
{
    set("screenRate", lately.rate);
    set("droppedPictures", lately.dropped);
    set("latePictures", lately.late);
    set("decodeLoad", std::round(lately.decodeLoad * 100) / 100);
    set("paintLoad", std::round(lately.paintLoad * 100) / 100);
    set("softwareRenderer", lately.bySoftware);
}

bool VideoOutput::take(const std::string& id, bool maxLinkRate, std::string* error)
{
    const Mode* mode = find(id);
    if (!mode)
        return fail(error, "There is no mode " + id + ".");
    if (const std::string why = whyNotTaken(*mode); !why.empty())
        return fail(error, why);
    if (m_real && !isUnderWayTo(mode->timing))
        return ask(*mode, maxLinkRate, error);
    apply(m_real ? Mode{mode->id, m_inForce.timing, mode->isStandard} : *mode, maxLinkRate);
    return true;
}

/// The display's preferred mode, or else its first that can be shown; one that all know where it names none.
void VideoOutput::takeUsual(bool maxLinkRate)
{
    const Mode* mode = find(text("preferredModelineId"));
    if (m_real && !m_inForce.modelineId.empty()) {
        std::string ignored;
        if (!mode || !take(mode->id, maxLinkRate, &ignored))
            takeReal();
        return;
    }
    if (!mode || !whyNotTaken(*mode).empty()) {
        const auto own = std::ranges::find_if(
            m_modes, [this](const Mode& one) { return !one.isStandard && whyNotTaken(one).empty(); });
        mode = own == m_modes.end() ? find("1920x1080p50") : &*own;
    }
    apply(*mode, maxLinkRate);
}

std::string VideoOutput::whyNotTaken(const Mode& mode) const
{
    const std::string why = m_edid ? whyNotShown(*m_edid, mode.timing) : std::string();
    if (!why.empty() || m_real || linkFor(mode.timing, colorDepth(mode.timing), false))
        return why;
    return mode.timing.label() + " needs " + gigabits(bitRate(mode.timing, 8)) + ", and the link carries " +
           gigabits(fastestLink.capacity()) + ".";
}

/// Bits of a colour channel: as many as the display takes and the link carries, or as a real screen is
/// painted with.
int VideoOutput::colorDepth(const VideoTiming& mode) const
{
    if (m_real)
        return 8;
    for (const int bpc : {12, 10}) {
        if (m_edid && m_edid->bpc >= bpc && linkFor(mode, bpc, false))
            return bpc;
    }
    return 8;
}

void VideoOutput::apply(const Mode& mode, bool maxLinkRate)
{
    const VideoTiming timing = mode.timing;
    set("modelineId", mode.id);
    set("maxLinkRate", maxLinkRate);
    set("width", timing.width);
    set("height", timing.height);
    set("hTotal", timing.hTotal);
    set("vTotal", timing.vTotal);
    set("hSyncPolarity", timing.hPolarity);
    set("vSyncPolarity", timing.vPolarity);
    set("interlaced", timing.interlaced);
    set("dotClock",
        static_cast<int>(std::min<std::int64_t>(timing.dotClock, std::numeric_limits<int>::max())));
    set("bpc", colorDepth(timing));
    set("colorspace", std::string(m_real ? "" : "RGB"));
    m_inForce = {mode.id, text("edidOverride"), text("edidOverrideFilename"), maxLinkRate, timing};
    showLink();
}

void VideoOutput::showLink()
{
    const bool isPlugged = !m_real && !m_displayEdid.empty(); // nobody tells of a real link
    const VideoTiming& timing = m_inForce.timing;
    const auto link = linkFor(timing, colorDepth(timing), m_inForce.maxLinkRate);
    set("currentLaneCount", isPlugged && link ? link->lanes : 0);
    set("currentLinkRate", isPlugged && link ? link->rate : 0);
    set("reportedLaneCount", isPlugged ? fastestLink.lanes : 0);
    set("reportedLinkRate", isPlugged ? fastestLink.rate : 0);
}

void VideoOutput::write(const Settings& settings)
{
    set("modelineId", settings.modelineId);
    set("edidOverride", settings.edidOverride);
    set("edidOverrideFilename", settings.edidOverrideFilename);
    set("maxLinkRate", settings.maxLinkRate);
}

/// Takes over what is plugged in, and the EDID that stands in its place: its modes are offered from then on.
void VideoOutput::readDisplay()
{
    const std::optional<Edid> display = edidOf(m_displayEdid);
    const std::string instead = text("edidOverride");
    m_edid = instead.empty() ? display : edidOf(instead);
    m_modes.clear();
    const auto add = [this](const VideoTiming& timing, bool isStandard) {
        const std::string id = std::string(isStandard ? std::string_view() : displayPrefix) + timing.id();
        if (std::ranges::find(m_modes, id, &Mode::id) == m_modes.end())
            m_modes.push_back({id, timing, isStandard});
    };
    std::ranges::for_each(displayModes(), [&](const VideoTiming& mode) { add(mode, false); });
    std::ranges::for_each(standardModes(), [&](const VideoTiming& mode) { add(mode, true); });
    showModes();
    set("preferredModelineId", preferredId());
    set("connected", isConnected());
    set("product", !display ? std::string() : display->product.empty() ? display->maker : display->product);
    set("edid", m_displayEdid);
    set("subconnector", std::string(m_displayEdid.empty() || m_real ? "" : "Native"));
}

/// Those of the EDID in force; of a real display without another EDID in its place those that the machine
/// offers for it.
std::vector<VideoTiming> VideoOutput::displayModes() const
{
    const std::string instead = text("edidOverride");
    const bool isOwn = instead.empty() || instead == m_displayEdid;
    if (m_real && isOwn && !m_real->modes.empty())
        return m_real->modes;
    return m_edid ? m_edid->modes : std::vector<VideoTiming>();
}

std::string VideoOutput::preferredId() const
{
    const auto named = [](const std::optional<VideoTiming>& mode) {
        return mode ? std::string(displayPrefix) + mode->id() : std::string();
    };
    const bool isOwn = text("edidOverride").empty();
    return m_real && isOwn && m_real->preferred ? named(m_real->preferred)
                                                : named(m_edid ? m_edid->preferred : std::nullopt);
}

void VideoOutput::showModes()
{
    Object* shown = object()->findChildByName("modelines", false);
    Path path;
    if (!shown || !m_scene.pathOf(shown, path))
        return;
    Json modelines = Json::array();
    for (const Mode& mode : m_modes)
        modelines.append(modelineJson(mode.id, mode.timing, mode.isStandard));
    if (Scene::toJson(object()).get("modelines") == modelines)
        return;
    Patch patch;
    PatchOp op;
    op.op = PatchOpType::Remove;
    for (int i = shown->childCount(); i-- > 0;) {
        op.path = path + Path{std::to_string(i)};
        patch.append(op);
    }
    op.op = PatchOpType::Add;
    for (std::size_t i = 0; i < m_modes.size(); ++i) {
        op.path = path + Path{std::to_string(i)};
        op.value = *modelines.at(i);
        patch.append(op);
    }
    if (!m_scene.apply(patch, true))
        Log::write(LogLevel::Error, "vantrel.outputs", "the scene does not take the modes");
}

const VideoOutput::Mode* VideoOutput::find(const std::string& id) const
{
    auto mode = std::ranges::find(m_modes, id, &Mode::id);
    if (mode == m_modes.end() && !id.starts_with(displayPrefix))
        mode = std::ranges::find_if(m_modes, [&id](const Mode& one) { return isNearly(one.id, id); });
    return mode == m_modes.end() ? nullptr : &*mode;
}

void VideoOutput::keep()
{
    m_kept.reset();
    m_secondsLeft = 0;
    set("confirmSeconds", 0);
}

void VideoOutput::revert()
{
    const Settings former = *m_kept;
    set("edidOverride", former.edidOverride);
    set("edidOverrideFilename", former.edidOverrideFilename);
    readDisplay();
    std::string ignored;
    if (m_real)
        goBackTo(former);
    else if (!take(former.modelineId, former.maxLinkRate, &ignored))
        takeUsual(former.maxLinkRate);
    tell({});
    keep();
}

void VideoOutput::tell(const std::string& trouble)
{
    set("errorText", trouble);
    set("error", !trouble.empty());
}

} // namespace vantrel::ombra
