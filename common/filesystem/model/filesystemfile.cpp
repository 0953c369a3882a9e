#include "common/filesystem/model/filesystemfile.h"

namespace vantrel {

QString FileSystemFile::getFullPath() const
{
    const QString separator = directory.fullPath.endsWith(u'/') ? QString() : QStringLiteral("/");
    return directory.fullPath + separator + name;
}

} // namespace vantrel
