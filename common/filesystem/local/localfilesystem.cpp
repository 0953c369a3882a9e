#include "common/filesystem/local/localfilesystem.h"

#include "common/filesystem/local/localfilesystem_p.h"
#include "common/filesystem/local/systemfile.h"
#include "common/filesystem/model/filesystemlogging.h"

#include <QDir>

#include <sys/statvfs.h>

namespace vantrel {

LocalFileSystem::LocalFileSystem(QObject* parent)
    : FileSystem(parent)
    , m_private(std::make_unique<LocalFileSystemPrivate>(this))
{
}

LocalFileSystem::~LocalFileSystem() = default;

void LocalFileSystem::setPatience(std::chrono::milliseconds patience)
{
    m_private->knock().setLimit(patience);
}

QString LocalFileSystem::fileSystemName() const
{
    return tr("Local files");
}

QString LocalFileSystem::defaultRootPath() const
{
    return QStringLiteral("/");
}

bool LocalFileSystem::isReady() const
{
    return true;
}

bool LocalFileSystem::isLoading() const
{
    return false;
}

bool LocalFileSystem::getDirectories(QString directoryPath, QList<FileSystemDirectory>& result)
{
    const DirectoryContent* content = nullptr;
    if (!m_private->findContent(directoryPath, &content)) {
        qCWarning(lcFileSystem) << "Unable to read directories from invalid path:" << directoryPath;
        Q_EMIT invalidDirectoryPathRequest(directoryPath);
    }
    if (content)
        result += content->directories;
    return content;
}

bool LocalFileSystem::getFiles(QString directoryPath, QList<FileSystemFile>& result)
{
    const DirectoryContent* content = nullptr;
    if (!m_private->findContent(directoryPath, &content)) {
        qCWarning(lcFileSystem) << "Unable to read files from invalid path:" << directoryPath;
        Q_EMIT invalidDirectoryPathRequest(directoryPath);
    }
    if (content)
        result = content->files;
    return content;
}

FileSystem::ItemType LocalFileSystem::getType(QString path)
{
    if (!m_private->knock().answersForItem(path))
        return m_private->typeOf(path);
    const QFileInfo info(path);
    if (info.isFile())
        return File;
    return info.isDir() ? Directory : Unknown;
}

bool LocalFileSystem::requestMetadata(QString filePath, FileMetadata&)
{
    // Every row of a view asks: no warning.
    qCDebug(lcFileSystem) << "Requesting metadata for file" << filePath;
    qCDebug(lcFileSystem, "Unimplemented code.");
    return false;
}

bool LocalFileSystem::isValidDirectoryPath(QString directoryPath) const
{
    const QDir dir(directoryPath);
    // Of a disk that does not answer the reading will tell.
    if (dir.isAbsolute() && !m_private->knock().answers(directoryPath))
        return true;
    return dir.isAbsolute() && dir.exists() && dir.isReadable();
}

OperationVisitor* LocalFileSystem::operationVisitor()
{
    return m_private.get();
}

qint64 LocalFileSystem::availableBytes(const QString& path) const
{
    struct statvfs disk
    {
    };
    if (!m_private->knock().answers(path) || ::statvfs(QFile::encodeName(path).constData(), &disk) != 0)
        return -1;
    return static_cast<qint64>(disk.f_bavail) * static_cast<qint64>(disk.f_frsize);
}

qint64 LocalFileSystem::fileSize(const QString& path) const
{
    if (!m_private->knock().answersForItem(path))
        return -1;
    const QFileInfo info(path);
    return info.isFile() ? info.size() : -1;
}

int LocalFileSystem::otherFiles(const QString& directoryPath) const
{
    return m_private->otherFiles(directoryPath);
}

bool LocalFileSystem::isLink(const QString& path) const
{
    // Nothing is removed through what may be one.
    if (!m_private->knock().answersForItem(path))
        return true;
    const auto stat = systemfile::linkStat(systemfile::withoutSlash(systemfile::bytesOf(path)));
    return stat && S_ISLNK(stat->st_mode);
}

bool LocalFileSystem::wantsFreeNames() const
{
    return true;
}

void LocalFileSystem::whenReachable(const QString& path, QObject* context, std::function<void(bool)> next)
{
    m_private->knock().whenItAnswers(path, context, std::move(next));
}

} // namespace vantrel
