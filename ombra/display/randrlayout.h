#pragma once

#include "ombra/display/modememory.h"

#include <string>
#include <utility>
#include <vector>

struct _XDisplay;

namespace vantrel::ombra {

/// Gives the outputs of a desktop other modes, with what lies beside and below them moved along, so that no
/// screen shows a part of another one's. Of the thread of Randr.
class RandrLayout
{
public:
    RandrLayout(_XDisplay* display, unsigned long root, ModeMemory memory);

    /// False, with a sentence, where the driver does not take it; then all is as it was.
    bool setMode(const std::string& output, const VideoTiming& mode, std::string* why);
    /// Outputs have the mode again that they had before the first setMode().
    void restore();
    /// The same of what a run before this one set and could not restore.
    void restoreLeftOver();

private:
    struct Part // of the desktop, on one output
    {
        unsigned long crtc = 0, mode = 0;
        std::vector<unsigned long> outputs;
        unsigned short rotation = 1;
        int x = 0, y = 0, width = 0, height = 0;
        bool operator==(const Part&) const = default;
    };
    using Parts = std::vector<Part>;

    struct Former // mode of an output
    {
        unsigned long output = 0, mode = 0;
        int width = 0, height = 0;
        ModeMemory::Change change{};
    };

    unsigned long outputNamed(const std::string& name) const;
    bool give(unsigned long output, const VideoTiming& mode, std::string* why);
    void remember() const;
    Parts parts() const;
    static const Part* partOf(const Parts& parts, unsigned long output);
    bool change(unsigned long output, unsigned long mode, int width, int height);
    bool apply(const Parts& from, const Parts& to);
    bool setPart(const Part& part);
    void clearPart(const Part& part);
    void setSize(const Parts& parts);
    unsigned long modeFor(unsigned long output, const VideoTiming& mode);
    unsigned long makeMode(unsigned long output, const VideoTiming& mode);

    _XDisplay* m_display;
    const unsigned long m_root;
    const ModeMemory m_memory;
    std::vector<Former> m_before;                                // of those that were changed
    std::vector<std::pair<unsigned long, unsigned long>> m_made; // outputs and modes of ours
};

} // namespace vantrel::ombra
