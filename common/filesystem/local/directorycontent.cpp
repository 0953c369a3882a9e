#include "common/filesystem/local/directorycontent.h"

#include "common/filesystem/model/pathhelpers.h"

#include <QDir>
#include <QDirIterator>
#include <QSet>

#include <algorithm>

namespace vantrel {

namespace {

bool isShown(const QString& name)
{
    static const QStringList extensions = allFileExtensions(QString());
    static const QSet<QString> known(extensions.begin(), extensions.end());
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot >= 0 && known.contains(name.mid(dot + 1).toLower());
}

/// Of a link: whether it leads to a directory on the path by which it was come to.
bool leadsBack(const QFileInfo& directory)
{
    if (!directory.isSymLink())
        return false;
    const QString target = directory.canonicalFilePath();
    QString above = directory.absolutePath();
    while (QFileInfo(above).canonicalFilePath() != target) {
        if (above == QStringLiteral("/"))
            return false;
        above = getParentPath(above);
    }
    return true;
}

template <typename Item>
void sortByName(QList<Item>& items)
{
    std::ranges::sort(items, {}, &Item::name);
}

} // namespace

std::optional<DirectoryContent> DirectoryContent::read(const QString& path)
{
    const QDir dir(path);
    if (!dir.exists())
        return std::nullopt;
    DirectoryContent content;
    const FileSystemDirectory holder{dir.dirName(), dir.absolutePath()};
    QDirIterator entries(dir.absolutePath(), QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        entries.next();
        const QFileInfo info = entries.fileInfo();
        const QString name = entries.fileName();
        if (info.isDir())
            content.directories.append({name, normalizePath(dir.absoluteFilePath(name)), leadsBack(info)});
        else if (isShown(name))
            content.files.append({name, info.size(), holder});
        else
            ++content.otherFiles;
    }
    sortByName(content.directories);
    sortByName(content.files);
    const QString up = QStringLiteral("..");
    content.directories.prepend({up, normalizePath(dir.absoluteFilePath(up))});
    return content;
}

} // namespace vantrel
