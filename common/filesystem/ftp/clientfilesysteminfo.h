#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

namespace vantrel {

enum class ClientFileSystemType {
    Unknown = 0,
    File = 1,
    Directory = 2,
};

/// One entry of a server's listing.
struct ClientFileSystemInfo
{
    ClientFileSystemType type = ClientFileSystemType::Unknown;
    QString name;         // last component of the path
    QString path;         // in the server's file system; a directory's ends with "/"
    qint64 sizeBytes = 0; // of a file
    bool isSymLink = false;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::ClientFileSystemType)
Q_DECLARE_METATYPE(vantrel::ClientFileSystemInfo)
