#pragma once

#include <QString>

namespace vantrel {

/// One item of the work that an operation on a directory is made of.
struct FileSystemPath
{
    enum Type {
        File = 1,
        Directory = 2,
    };

    QString path;
    int type = File;
    /// Of a file; of a directory all that is below it.
    unsigned long long sizeBytes = 0;
    /// A directory whose content has been moved away: it goes when nothing else is in it.
    bool isEmptied = false;
    /// It lies below a symbolic link, which may lead out of the tree: it is copied, and stays.
    bool isLinked = false;
};

} // namespace vantrel
