#pragma once

#include "common/filesystem/operations/filesystempath.h"
#include "common/filesystem/operations/recursivedirectorylister.h"

#include <QList>

namespace vantrel {

/// The items of a tree, each directory before what is in it. base: the path above the item; rootName: the
/// name of the tree's root, which a listing calls ".".
void parseDirectoryPaths(QList<FileSystemPath>& result, const QString& base, const QString& rootName,
                         const RecursiveDirectoryLister::DirectoryItem& item);
/// What is directly below the item, whose path is given.
void parseContentPaths(QList<FileSystemPath>& result, const QString& path,
                       const RecursiveDirectoryLister::DirectoryItem& item);
/// The directories among the paths once more, what is below before what is above: to be taken away when
/// empty.
void appendEmptied(QList<FileSystemPath>& paths);

} // namespace vantrel
