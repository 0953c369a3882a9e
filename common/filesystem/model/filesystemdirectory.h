#pragma once

#include <QMetaType>
#include <QString>

namespace vantrel {

/// A directory of a file system, as listings give it.
struct FileSystemDirectory
{
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString fullPath MEMBER fullPath)

public:
    QString name;
    /// Absolute; ends with "/" when it comes from fromFullPath, and need not otherwise: compare by
    /// isSamePath().
    QString fullPath;

    static FileSystemDirectory fromFullPath(const QString& path);

    bool operator==(const FileSystemDirectory&) const = default;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::FileSystemDirectory)
