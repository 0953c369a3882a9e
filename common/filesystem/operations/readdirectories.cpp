#include "common/filesystem/operations/readdirectories.h"

#include "common/filesystem/model/pathhelpers.h"

namespace vantrel {

bool ReadDirectories::contains(const QString& path) const
{
    return m_contents.contains(withoutTrailingSlash(path));
}

QList<std::filesystem::path> ReadDirectories::getFileSystemPaths(const std::filesystem::path& path)
{
    return getFileSystemPaths(QString::fromStdString(path.generic_string()));
}

QList<std::filesystem::path> ReadDirectories::getFileSystemPaths(const QString& path)
{
    QList<std::filesystem::path> paths;
    const auto content = m_contents.constFind(withoutTrailingSlash(path));
    if (content == m_contents.cend())
        return paths;
    paths.reserve(content->directories.size() + content->files.size());
    for (const FileSystemDirectory& directory : content->directories) {
        if (directory.name != QStringLiteral(".."))
            paths.emplaceBack(createJoinedPath(path, directory.name, true).toStdString());
    }
    for (const FileSystemFile& file : content->files)
        paths.emplaceBack(createJoinedPath(path, file.name, false).toStdString());
    return paths;
}

} // namespace vantrel
