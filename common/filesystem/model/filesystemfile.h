#pragma once

#include "common/filesystem/model/filesystemdirectory.h"

namespace vantrel {

/// A file of a file system, as listings give it.
struct FileSystemFile
{
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(qint64 sizeBytes MEMBER sizeBytes)
    Q_PROPERTY(vantrel::FileSystemDirectory directory MEMBER directory)

public:
    QString name;
    qint64 sizeBytes = 0;
    /// The one that holds it.
    FileSystemDirectory directory;

    QString getFullPath() const;

    bool operator==(const FileSystemFile&) const = default;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::FileSystemFile)
