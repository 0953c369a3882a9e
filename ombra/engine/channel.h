#pragma once

#include "ombra/engine/playback.h"

namespace vantrel::ombra {

/// A channel: what is cued on preview, what is on air on program, and the take from one to the other. The
/// io_context's thread.
///
/// A take with swap exchanges the two media at once; what was on air is paused on preview, at its in point
/// or, when the take keeps positions, where it was. A copy leaves preview alone. Program plays after every
/// take.
class Channel
{
public:
    Channel(Studio& studio, const std::string& path)
        : m_studio(studio)
        , m_preview(studio, path + "/preview", false)
        , m_program(studio, path + "/program", true)
    {
    }

    /// presetToggle (true: swap), playheadOption, transitionType, transitionDuration (seconds). False, and a
    /// message, for arguments of other kinds, or when there is nothing on preview.
    bool take(const Json& args, std::string* error);

    Playback& preview() { return m_preview; }
    Playback& program() { return m_program; }

private:
    Studio& m_studio;
    Playback m_preview;
    Playback m_program;
};

} // namespace vantrel::ombra
