#include "common/filesystem/model/filesystemtarget.h"

#include <functional>

namespace vantrel {

bool FileSystemTarget::operator<(const FileSystemTarget& other) const
{
    if (fileSystem != other.fileSystem)
        return std::less<>{}(fileSystem, other.fileSystem);
    return fullPath < other.fullPath;
}

} // namespace vantrel
