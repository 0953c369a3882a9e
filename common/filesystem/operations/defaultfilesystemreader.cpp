#include "common/filesystem/operations/defaultfilesystemreader.h"

#include "common/filesystem/model/filesystem.h"
#include "common/filesystem/model/filesystemlogging.h"

namespace vantrel {

DefaultFileSystemReader::DefaultFileSystemReader(QObject* parent)
    : QObject(parent)
{
}

DefaultFileSystemReader::~DefaultFileSystemReader() = default;

FileSystem* DefaultFileSystemReader::fileSystem() const
{
    return m_fileSystem;
}

void DefaultFileSystemReader::setFileSystem(FileSystem* fileSystem)
{
    m_fileSystem = fileSystem;
    m_hadFileSystem = fileSystem;
}

QList<std::filesystem::path> DefaultFileSystemReader::getFileSystemPaths(const std::filesystem::path& path)
{
    return getFileSystemPaths(QString::fromStdString(path.generic_string()));
}

QList<std::filesystem::path> DefaultFileSystemReader::getFileSystemPaths(const QString& path)
{
    if (!m_fileSystem) {
        if (m_hadFileSystem)
            qCWarning(lcFileSystem, "Unable to get paths from an empty file system.");
        else
            qCWarning(lcFileSystem) << "Failed to get paths for" << path
                                    << "because the target file system is not defined";
        return {};
    }
    QList<FileSystemDirectory> directories;
    QList<FileSystemFile> files;
    if (!m_fileSystem->getDirectories(path, directories))
        qCWarning(lcFileSystem) << "Failed to get directories for" << path;
    if (!m_fileSystem->getFiles(path, files))
        qCWarning(lcFileSystem) << "Failed to get files for" << path;
    QList<std::filesystem::path> paths;
    paths.reserve(directories.size() + files.size());
    for (const FileSystemDirectory& directory : std::as_const(directories)) {
        if (directory.name != QLatin1String("..") && directory.name != QLatin1String("."))
            paths.emplaceBack(directory.fullPath.toStdString());
    }
    for (const FileSystemFile& file : std::as_const(files))
        paths.emplaceBack(file.getFullPath().toStdString());
    return paths;
}

} // namespace vantrel
