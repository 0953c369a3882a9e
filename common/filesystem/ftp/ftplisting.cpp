#include "common/filesystem/ftp/ftplisting.h"

#include "common/filesystem/ftp/qurlinfo.h"
#include "common/filesystem/model/pathhelpers.h"

namespace vantrel {

namespace {

/// What a link leads to is not known; media have a suffix, folders have none.
bool looksLikeFile(const QString& name)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'), -2);
    return dot > 0;
}

ClientFileSystemType kindOf(const QUrlInfo& info)
{
    if (info.isFile())
        return ClientFileSystemType::File;
    if (info.isDir())
        return ClientFileSystemType::Directory;
    if (!info.isSymLink())
        return ClientFileSystemType::Unknown;
    return looksLikeFile(info.name()) ? ClientFileSystemType::File : ClientFileSystemType::Directory;
}

} // namespace

void FtpListing::add(const QUrlInfo& info)
{
    const QString name = info.name();
    const bool isDirectory = info.isSymLink() ? !looksLikeFile(name) : info.isDir();
    const ClientFileSystemInfo entry{
        isDirectory ? ClientFileSystemType::Directory : ClientFileSystemType::File, name,
        createJoinedPath(path, name, isDirectory), info.size(), info.isSymLink()};
    entries.append(entry);
    listing.add(entry);
    kinds.insert(name, {kindOf(info), info.isSymLink()});
}

} // namespace vantrel
