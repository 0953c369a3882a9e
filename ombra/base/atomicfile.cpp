#include "ombra/base/atomicfile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantrel::ombra {

namespace {

bool failed(std::string* error, const std::filesystem::path& path, const char* what)
{
    if (error)
        *error = std::string(what) + " " + path.string() + ": " + std::strerror(errno);
    return false;
}

class File
{
public:
    File(const std::filesystem::path& path, int flags)
        : m_fd(::open(path.c_str(), flags | O_CLOEXEC, 0644))
    {
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    int get() const { return m_fd; }

private:
    int m_fd;
};

std::filesystem::path freeName(const std::filesystem::path& path)
{
    for (int n = 1; n < 10000; ++n) {
        std::filesystem::path target = path;
        target += ".damaged-" + std::to_string(n);
        std::error_code code;
        if (!std::filesystem::exists(target, code))
            return target;
    }
    return {};
}

} // namespace

bool writeAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool syncFolder(const std::filesystem::path& folder)
{
    const File file(folder, O_RDONLY | O_DIRECTORY);
    return file.get() >= 0 && ::fsync(file.get()) == 0;
}

bool writeFileAtomically(const std::filesystem::path& path, std::string_view text, std::string* error)
{
    std::filesystem::path temporary = path;
    temporary += ".tmp";
    {
        const File file(temporary, O_WRONLY | O_CREAT | O_TRUNC);
        if (file.get() < 0)
            return failed(error, temporary, "cannot create");
        if (!writeAll(file.get(), text) || ::fsync(file.get()) != 0) {
            failed(error, temporary, "cannot write");
            ::unlink(temporary.c_str()); // it would keep what room a full disk has left
            return false;
        }
    }
    if (::rename(temporary.c_str(), path.c_str()) != 0)
        return failed(error, path, "cannot replace");
    return syncFolder(path.parent_path()) || failed(error, path.parent_path(), "cannot sync");
}

std::optional<std::string> readWholeFile(const std::filesystem::path& path, std::size_t limit,
                                         std::string* error)
{
    if (error)
        error->clear();
    const File file(path, O_RDONLY);
    if (file.get() < 0) {
        if (errno != ENOENT)
            failed(error, path, "cannot open");
        return std::nullopt;
    }
    struct stat info
    {
    };
    if (::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode) ||
        static_cast<std::size_t>(info.st_size) > limit) {
        if (error)
            *error = path.string() + " is no file or too large";
        return std::nullopt;
    }
    std::string text(static_cast<std::size_t>(info.st_size), '\0');
    std::size_t filled = 0;
    while (filled < text.size()) {
        const ssize_t count = ::read(file.get(), text.data() + filled, text.size() - filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0) {
            failed(error, path, "cannot read");
            return std::nullopt;
        }
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    text.resize(filled);
    return text;
}

std::filesystem::path moveAside(const std::filesystem::path& path)
{
    const std::filesystem::path target = freeName(path);
    std::error_code code;
    if (!target.empty())
        std::filesystem::rename(path, target, code);
    return code ? std::filesystem::path() : target;
}

std::filesystem::path copyAside(const std::filesystem::path& path)
{
    const std::filesystem::path target = freeName(path);
    std::error_code code;
    if (!target.empty())
        std::filesystem::copy_file(path, target, code);
    return code ? std::filesystem::path() : target;
}

} // namespace vantrel::ombra
