#pragma once

#include "common/filesystem/operations/filesystempath.h"
#include "common/filesystem/operations/recursivedirectorylister.h"

#include <QList>

namespace vantrel {

class FileSystem;

/// The items of a tree, each directory before what is in it. base: the path above the item; rootName: the
/// name of the tree's root, which a listing calls ".".
void parseDirectoryPaths(QList<FileSystemPath>& result, const QString& base, const QString& rootName,
                         const RecursiveDirectoryLister::DirectoryItem& item);
/// What is directly below the item, whose path is given.
void parseContentPaths(QList<FileSystemPath>& result, const QString& path,
                       const RecursiveDirectoryLister::DirectoryItem& item);
/// Marks what lies below a symbolic link to a directory; the link itself is the tree's own. The paths in the
/// order in which parseDirectoryPaths() gives them.
void markLinked(QList<FileSystemPath>& paths, const FileSystem& fileSystem);
/// The directories among the paths that are the tree's own once more, what is below before what is above: to
/// be taken away when empty.
void appendEmptied(QList<FileSystemPath>& paths);

} // namespace vantrel
