#pragma once

#include "common/filesystem/model/filesystem.h"

#include <QMap>
#include <QSet>
#include <QTimer>

namespace vantrel::test {

/// A tree in memory that answers at once, or later as a server does.
class FakeFileSystem : public FileSystem
{
public:
    bool answersLater = false;
    bool ready = true;
    QSet<QString> invalid;
    QStringList asked;

    /// Adds a file and the directories above it: "/a/b/clip.mov".
    void add(const QString& path, qint64 size)
    {
        const QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
        QString at = QStringLiteral("/");
        for (qsizetype i = 0; i + 1 < parts.size(); ++i) {
            const QString below = at + parts.at(i) + QLatin1Char('/');
            if (!m_directories.value(at).contains(below))
                m_directories[at].append(below);
            at = below;
        }
        m_files[at].append({parts.last(), size, FileSystemDirectory::fromFullPath(at)});
    }

    QString fileSystemName() const override { return QStringLiteral("fake"); }
    QString defaultRootPath() const override { return QStringLiteral("/"); }
    bool isReady() const override { return ready; }
    bool isLoading() const override { return false; }
    bool getDirectories(QString path, QList<FileSystemDirectory>& result) override
    {
        path = key(path);
        if (!isKnown(path))
            return false;
        result.append({QStringLiteral(".."), path + QStringLiteral("../")});
        for (const QString& directory : m_directories.value(path))
            result.append(FileSystemDirectory::fromFullPath(directory));
        return true;
    }
    bool getFiles(QString path, QList<FileSystemFile>& result) override
    {
        path = key(path);
        if (!m_answered.contains(path) && answersLater)
            return false;
        result = m_files.value(path);
        return true;
    }
    ItemType getType(QString) override { return Unknown; }
    bool requestMetadata(QString, FileMetadata&) override { return false; }
    bool isValidDirectoryPath(QString) const override { return true; }
    OperationVisitor* operationVisitor() override { return nullptr; }

private:
    static QString key(const QString& path)
    {
        return path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
    }
    bool isKnown(const QString& path)
    {
        if (m_answered.contains(path) || !answersLater) {
            asked << path;
            return true;
        }
        QTimer::singleShot(0, this, [this, path] {
            if (invalid.contains(path)) {
                Q_EMIT invalidDirectoryPathRequest(path);
                return;
            }
            m_answered.insert(path);
            Q_EMIT directoryChanged(FileSystemDirectory::fromFullPath(path));
        });
        return false;
    }

    QMap<QString, QStringList> m_directories;
    QMap<QString, QList<FileSystemFile>> m_files;
    QSet<QString> m_answered;
};

} // namespace vantrel::test
