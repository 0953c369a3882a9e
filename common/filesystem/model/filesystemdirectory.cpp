#include "common/filesystem/model/filesystemdirectory.h"

#include "common/filesystem/model/pathhelpers.h"

namespace vantrel {

FileSystemDirectory FileSystemDirectory::fromFullPath(const QString& path)
{
    if (path == u"/")
        return {path, path};
    return {getNameInPath(path), path.endsWith(u'/') ? path : path + u'/'};
}

} // namespace vantrel
