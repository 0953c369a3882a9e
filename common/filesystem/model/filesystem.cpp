#include "common/filesystem/model/filesystem.h"

namespace vantrel {

bool FileSystem::requestMetadataAlone(const QString& filePath, FileMetadata& result)
{
    return requestMetadata(filePath, result);
}

void FileSystem::giveUpListing(const QString&) {}

qint64 FileSystem::availableBytes(const QString&) const
{
    return -1;
}

qint64 FileSystem::fileSize(const QString&) const
{
    return -1;
}

int FileSystem::otherFiles(const QString&) const
{
    return 0;
}

bool FileSystem::isLink(const QString&) const
{
    return false;
}

bool FileSystem::wantsFreeNames() const
{
    return false;
}

void FileSystem::whenReachable(const QString&, QObject*, std::function<void(bool)> next)
{
    next(true);
}

} // namespace vantrel
