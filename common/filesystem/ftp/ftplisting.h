#pragma once

#include "common/filesystem/ftp/clientlisting.h"

#include <QMetaType>

namespace vantrel {

class QUrlInfo;

/// What one LIST has brought, all of it: put together on the worker's thread, entry by entry, so that the
/// main thread has no work with each.
struct FtpListing
{
    /// What a name is to the protocol; it decides how the item is removed.
    struct Kind
    {
        ClientFileSystemType type = ClientFileSystemType::Unknown;
        bool isSymLink = false;
    };

    int id = 0; // of the command; 0: none
    QString path;
    QList<ClientFileSystemInfo> entries;
    ClientListing listing;      // of the same entries
    QHash<QString, Kind> kinds; // by name

    void add(const QUrlInfo& info);
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::FtpListing)
