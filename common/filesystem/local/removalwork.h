#pragma once

#include "common/filesystem/local/copywork.h"
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
    /// The same for what is our own, not to be stopped and without progress.
    static int removeAll(const std::string& path);
    /// The same for what has been moved elsewhere by copying: what has come since, or is another by now,
    /// stays, which is the error EBUSY.
    static int removeCopied(const std::string& path, const CopiedItems& copied, std::string& failedAt);

    /// Why nobody may remove it, escaped; empty when it may go.
    static QString protection(const QString& path);

private:
    static int removeUnasked(const std::string& path, const CopiedItems* copied, std::string* failedAt);
    int removeItem(const std::string& path);
    bool isCopied(const std::string& path, const struct stat& stat) const;
    int removeContent(const std::string& directory);
    quint64 countItems(const std::string& path);

    JobControl* m_control;
    dev_t m_device = 0;
    std::string m_failedAt;
    const CopiedItems* m_copied = nullptr; // where only these may go
    bool m_isLeft = false;                 // something that is none of them
};

} // namespace vantrel
