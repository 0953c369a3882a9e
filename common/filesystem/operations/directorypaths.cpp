#include "common/filesystem/operations/directorypaths.h"

#include "common/filesystem/model/filesystem.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"

namespace vantrel {

namespace {

FileSystemPath pathOf(const QString& base, const RecursiveDirectoryLister::DirectoryItem& item)
{
    const bool isDirectory = item.type == FileSystemPath::Directory;
    if (!isDirectory && item.type != FileSystemPath::File)
        qFatal("Unknown directory item type!"); // no lister makes such an item
    return {createJoinedPath(base, item.name, isDirectory), item.type,
            static_cast<unsigned long long>(item.sizeBytes)};
}

} // namespace

void parseDirectoryPaths(QList<FileSystemPath>& result, const QString& base, const QString& rootName,
                         const RecursiveDirectoryLister::DirectoryItem& item)
{
    const QString name = item.name == QStringLiteral(".") ? rootName : item.name;
    const QString path = createJoinedPath(base, name, true);
    result.append({path, FileSystemPath::Directory, static_cast<unsigned long long>(item.sizeBytes)});
    for (const RecursiveDirectoryLister::DirectoryItem& child : item.items) {
        if (child.type == FileSystemPath::Directory)
            parseDirectoryPaths(result, path, rootName, child);
        else
            result.append(pathOf(path, child));
    }
}

void parseContentPaths(QList<FileSystemPath>& result, const QString& path,
                       const RecursiveDirectoryLister::DirectoryItem& item)
{
    for (const RecursiveDirectoryLister::DirectoryItem& child : item.items)
        result.append(pathOf(path, child));
}

void markLinked(QList<FileSystemPath>& paths, const FileSystem& fileSystem)
{
    QString link; // below which the last one lies, or which it is
    for (FileSystemPath& path : paths) {
        path.isLinked = !link.isEmpty() && path.path.startsWith(link);
        if (path.isLinked)
            continue;
        const bool isLink = path.type == FileSystemPath::Directory && fileSystem.isLink(path.path);
        link = isLink ? path.path : QString();
    }
}

void appendEmptied(QList<FileSystemPath>& paths)
{
    for (qsizetype i = paths.size() - 1; i >= 0; --i) {
        if (paths[i].type != FileSystemPath::Directory || paths[i].isLinked)
            continue;
        FileSystemPath emptied = paths[i];
        emptied.isEmptied = true;
        paths.append(emptied);
    }
}

} // namespace vantrel
