#pragma once

#include "common/filesystem/local/filejob.h"

#include <string>

namespace vantrel {

/// Removes a file, or a directory with all that is in it, on a worker thread. A symbolic link goes, what it
/// points to stays; nothing on another volume is touched.
class RemovalWork
{
public:
    explicit RemovalWork(JobControl& control);

    /// What an operator asks for: also refuses what nobody means to remove, the whole disk, a volume, the
    /// home folder. Tells its progress in items.
    /// With onlyEmpty a directory that holds anything stays, and that is no failure.
    JobResult run(const QString& path, bool onlyEmpty);
    /// The same for what is our own, not to be stopped and without progress; the error and the path at which
    /// it stopped.
    static int removeAll(const std::string& path, std::string* failedAt = nullptr);

    /// Why nobody may remove it, escaped; empty when it may go.
    static QString protection(const QString& path);

private:
    int removeItem(const std::string& path);
    int removeContent(const std::string& directory);
    quint64 countItems(const std::string& path);

    JobControl* m_control;
    dev_t m_device = 0;
    std::string m_failedAt;
};

} // namespace vantrel
