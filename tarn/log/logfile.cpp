#include "tarn/log/logfile.h"

#include <string>
#include <utility>

namespace vantrel {

LogFile::LogFile(std::filesystem::path path, std::uintmax_t largest, int files)
    : m_path(std::move(path))
    , m_largest(largest)
    , m_files(files)
{
}

bool LogFile::append(std::string_view line)
{
    const std::string text = std::string(line) + '\n';
    if (!m_file && !open())
        return false;
    if (m_size > 0 && m_size + text.size() > m_largest) {
        rotate();
        if (!m_file)
            return false;
    }
    const std::size_t written = std::fwrite(text.data(), 1, text.size(), m_file.get());
    m_size += written;
    if (written == text.size() && std::fflush(m_file.get()) == 0)
        return true;
    m_file.reset();
    return false;
}

bool LogFile::open()
{
    std::error_code ignored;
    std::filesystem::create_directories(m_path.parent_path(), ignored);
    m_file.reset(std::fopen(m_path.c_str(), "ae"));
    const std::uintmax_t size = std::filesystem::file_size(m_path, ignored);
    m_size = ignored ? 0 : size;
    return m_file != nullptr;
}

void LogFile::rotate()
{
    m_file.reset();
    std::error_code error;
    for (int number = m_files - 2; number > 0; --number)
        std::filesystem::rename(numbered(number), numbered(number + 1), error); // those that are there
    std::filesystem::rename(m_path, numbered(1), error);
    // A folder that takes no other name must not make the file grow on.
    m_file.reset(std::fopen(m_path.c_str(), "we"));
    m_size = 0;
}

std::filesystem::path LogFile::numbered(int number) const
{
    return m_path.string() + '.' + std::to_string(number);
}

} // namespace vantrel
