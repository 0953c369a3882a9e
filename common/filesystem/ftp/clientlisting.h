#pragma once

#include "common/filesystem/ftp/clientfilesysteminfo.h"

#include <QHash>
#include <QList>

namespace vantrel {

/// What a server has in one directory, as it is looked up and shown. A value that is made where the listing
/// arrives: with fifty thousand names that takes longer than a frame. Any thread.
struct ClientListing
{
    QHash<QString, ClientFileSystemInfo> all; // by name, shown or not
    QList<ClientFileSystemInfo> shown;        // in the server's order

    ClientListing() = default;
    explicit ClientListing(const QList<ClientFileSystemInfo>& entries);
    void add(const ClientFileSystemInfo& entry);

    /// Media and directories, as far as they are not hidden: what a listing shows.
    static bool isShown(const ClientFileSystemInfo& entry);
};

} // namespace vantrel
