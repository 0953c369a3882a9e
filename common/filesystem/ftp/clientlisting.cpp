#include "common/filesystem/ftp/clientlisting.h"

#include "common/filesystem/model/pathhelpers.h"

#include <QSet>
#include <QStringList>

namespace vantrel {

ClientListing::ClientListing(const QList<ClientFileSystemInfo>& entries)
{
    all.reserve(entries.size());
    for (const ClientFileSystemInfo& entry : entries)
        add(entry);
}

void ClientListing::add(const ClientFileSystemInfo& entry)
{
    all.insert(entry.name, entry);
    if (isShown(entry))
        shown.append(entry);
}

bool ClientListing::isShown(const ClientFileSystemInfo& entry)
{
    static const QSet<QString> suffixes = [] {
        const QStringList all = allFileExtensions({});
        return QSet<QString>(all.cbegin(), all.cend());
    }();
    if (entry.name.startsWith(u'.'))
        return false;
    if (entry.type != ClientFileSystemType::File)
        return entry.type == ClientFileSystemType::Directory;
    const qsizetype dot = entry.name.lastIndexOf(u'.');
    return dot >= 0 && suffixes.contains(entry.name.mid(dot + 1).toLower());
}

} // namespace vantrel
