#pragma once

#include "common/filesystem/local/jobcontrol.h"

#include <QString>

#include <string>
#include <sys/stat.h>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vantrel {

/// The items as they were when they were copied, by path.
using CopiedItems = std::unordered_map<std::string, struct stat>;

/// Copies files and directories in chunks on a worker thread, always to a name that is free. A symbolic link
/// is copied as what it points to; one that points to nothing stays one. Errors are the system's numbers,
/// ECANCELED once canceled.
class CopyWork
{
public:
    /// remembers: what takeCopied() wants to know.
    explicit CopyWork(JobControl& control, bool remembers = false);

    /// The bytes of all files below, added to total.
    int measure(const std::string& path, quint64& total);
    /// Progress in bytes. What is there after an error is not whole: the caller removes it.
    int copy(const std::string& from, const std::string& to);
    /// Returns once all of it is on the disk: what is said to be done must outlive a pulled cable.
    int flush(const std::string& path);
    /// All that was copied since the last take, by the path of the source.
    CopiedItems takeCopied() { return std::exchange(m_copied, {}); }
    /// Where the last error arose.
    const std::string& failedAt() const { return m_failedAt; }
    /// A sentence of its own for the last error, where the system's words do not say enough.
    const QString& failure() const { return m_failure; }

private:
    int copyFile(const std::string& from, const std::string& to);
    int copyBytes(int from, int to);
    int copyDirectory(const std::string& from, const std::string& to, const struct stat& stat);
    int copyBrokenLink(const std::string& from, const std::string& to);
    bool enter(const struct stat& directory);
    int failed(const std::string& path, int error);
    void remember(const std::string& path, const struct stat& stat);

    JobControl& m_control;
    bool m_remembers;
    std::string m_failedAt;
    QString m_failure;
    // The directories that it is inside of: a link to one of them would never end.
    std::vector<std::pair<dev_t, ino_t>> m_inside;
    CopiedItems m_copied;
};

} // namespace vantrel
