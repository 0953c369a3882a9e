#pragma once

#include "common/filesystem/local/jobcontrol.h"

#include <QString>

#include <string>
#include <sys/stat.h>
#include <vector>

namespace vantrel {

/// Copies files and directories in chunks on a worker thread, always to a name that is free. A symbolic link
/// is copied as what it points to; one that points to nothing stays one. Errors are the system's numbers,
/// ECANCELED once canceled.
class CopyWork
{
public:
    explicit CopyWork(JobControl& control);

    /// The bytes of all files below, added to total.
    int measure(const std::string& path, quint64& total);
    /// Progress in bytes. What is there after an error is not whole: the caller removes it.
    int copy(const std::string& from, const std::string& to);
    /// Returns once all of it is on the disk: what is said to be done must outlive a pulled cable.
    int flush(const std::string& path);
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

    JobControl& m_control;
    std::string m_failedAt;
    QString m_failure;
    // The directories that it is inside of: a link to one of them would never end.
    std::vector<std::pair<dev_t, ino_t>> m_inside;
};

} // namespace vantrel
