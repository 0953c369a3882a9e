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
};

} // namespace vantrel
