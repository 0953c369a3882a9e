#pragma once

#include "tarn/edid/videotiming.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// The modes that screens were given and those that they had before, on the disk: who is killed meanwhile
/// finds there what to give back. One thread.
class ModeMemory
{
public:
    struct Change
    {
        std::string output;
        VideoTiming before, given;
    };

    /// file: empty for none.
    explicit ModeMemory(std::filesystem::path file);

    std::vector<Change> read() const;
    /// Before anything is done, so that nothing of it is forgotten; none of them removes the file.
    void write(const std::vector<Change>& changes) const;

private:
    const std::filesystem::path m_file;
};

} // namespace vantrel::ombra
