#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string_view>

namespace vantrel {

/// A log on the disk that cannot fill it: when the file is full it becomes FILE.1, the one before FILE.2 and
/// so on, and the oldest goes. Whoever writes the log owns it and guards it.
class LogFile
{
public:
    static constexpr std::uintmax_t largestFile = 10485760; // bytes
    static constexpr int mostFiles = 5;

    explicit LogFile(std::filesystem::path path, std::uintmax_t largest = largestFile, int files = mostFiles);

    /// Writes a line and its end through to the system. False when the disk does not take it; the next line
    /// tries again.
    bool append(std::string_view line);

private:
    struct Close
    {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    bool open();
    void rotate();
    std::filesystem::path numbered(int number) const;

    const std::filesystem::path m_path;
    const std::uintmax_t m_largest;
    const int m_files;
    std::unique_ptr<std::FILE, Close> m_file;
    std::uintmax_t m_size = 0;
};

} // namespace vantrel
