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
    /// A link to one of the directories that it lies in: who goes on there never comes to an end.
    bool leadsBack = false;

    static FileSystemDirectory fromFullPath(const QString& path);

    bool operator==(const FileSystemDirectory&) const = default;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::FileSystemDirectory)
