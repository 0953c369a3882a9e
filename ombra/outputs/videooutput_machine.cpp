#include "ombra/base/fail.h"
#include "ombra/outputs/sceneaccess.h"
#include "ombra/outputs/videooutput.h"

#include <algorithm>
#include <cmath>

// The output as the machine's own: its connector, and the modes that it is given.

namespace vantrel::ombra {

void VideoOutput::follow(const Connector& connector)
{
    const bool isAnother = !m_real || m_real->name != connector.name || m_real->edid != connector.edid;
    m_real = connector;
    m_name = connector.name;
    m_hasHadDisplay = m_hasHadDisplay || connector.isConnected;
    setProperty(m_scene, object(), "name", m_name);
    if (isAnother)
        m_displayEdid = edidOf(connector.edid) ? connector.edid : std::string();
    if (!m_displayEdid.empty())
        m_lastEdid = m_displayEdid;
    readDisplay();
    takeReal();
}

void VideoOutput::pulled()
{
    if (!isConnected())
        return;
    Connector gone;
    gone.name = m_name;
    follow(gone);
}

void VideoOutput::tellPicture(int width, int height, double rate)
{
    if (!m_real || m_real->mode || width < 1 || height < 1)
        return;
    const auto isIt = [&](const Mode& one) {
        return one.timing.width == width && one.timing.height == height &&
               std::abs(one.timing.refreshRate() - rate) < 0.6; // told in whole numbers
    };
    const auto found = std::ranges::find_if(m_modes, isIt);
    VideoTiming bare;
    bare.width = width;
    bare.height = height;
    bare.hPolarity = bare.vPolarity = 0;
    m_real->mode = found == m_modes.end() ? bare : found->timing;
    takeReal();
}

HeldConnector VideoOutput::held() const
{
    return {m_real ? m_real->name : std::string(), m_lastEdid};
}

bool VideoOutput::isConnected() const
{
    return m_real ? m_real->isConnected : !m_displayEdid.empty();
}

/// The mode in force is the machine's. What nobody shows keeps the one before: the program goes on.
void VideoOutput::takeReal()
{
    const VideoTiming timing = m_real->mode.value_or(m_inForce.timing);
    const auto isIt = [&timing](const Mode& one) { return one.timing.id() == timing.id(); };
    const Mode* chosen = find(m_inForce.modelineId);
    auto mode = std::ranges::find(m_modes, timing, &Mode::timing);
    if (mode == m_modes.end())
        mode = std::ranges::find_if(m_modes, isIt);
    const std::string id = chosen && isIt(*chosen) ? chosen->id
                           : mode == m_modes.end() ? std::string(displayPrefix) + timing.id()
                                                   : mode->id;
    apply({id, timing, false}, m_inForce.maxLinkRate);
}

/// Whether it has that mode, or will have.
bool VideoOutput::isUnderWayTo(const VideoTiming& timing) const
{
    return (m_asked ? m_asked->timing : m_inForce.timing).id() == timing.id();
}

/// What the machine does comes as its connector, by follow(); until then nothing is said to be so.
bool VideoOutput::ask(const Mode& mode, bool maxLinkRate, std::string* error)
{
    if (!m_setMode || !connector() || !m_real->isOn)
        return fail(error, m_name + " shows nothing now, and has no mode that could be changed.");
    if (!m_beforeOurs)
        m_beforeOurs = m_inForce;
    m_asked = {mode.id, text("edidOverride"), text("edidOverrideFilename"), maxLinkRate, mode.timing};
    m_setMode(m_name, mode.timing, [this, number = ++m_asks](const std::string& why) {
        if (number == m_asks)
            answered(why);
    });
    return true;
}

void VideoOutput::answered(const std::string& why)
{
    const Settings asked = *std::exchange(m_asked, std::nullopt);
    if (why.empty()) {
        m_inForce.modelineId = asked.modelineId;
        m_inForce.maxLinkRate = asked.maxLinkRate;
        return;
    }
    write(m_inForce);
    readDisplay();
    takeReal();
    tell(why);
    if (m_kept)
        keep(); // nobody sees a difference
}

/// Also where the display no longer names that mode.
void VideoOutput::goBackTo(const Settings& former)
{
    std::string ignored;
    if (isUnderWayTo(former.timing) ||
        !ask({former.modelineId, former.timing, false}, former.maxLinkRate, &ignored))
        takeReal();
}

} // namespace vantrel::ombra
