#pragma once

#include <QMap>
#include <QObject>
#include <QVariant>

#include <functional>
#include <memory>

namespace vantrel {

class ConflictDesk;
class FileSystemDropHandlerPrivate;
class FileSystemOperations;
class FileSystemProvider;

/// Turns what was dropped on a browser into file operations: a copy from one side to the other, a move within
/// one. All of a drop is sound, or nothing of it happens. Main thread only.
class FileSystemDropHandler : public QObject
{
    Q_OBJECT

public:
    /// All must outlive this. desk: where transfers ask what to do with what is in their way; null lets them
    /// fail.
    FileSystemDropHandler(FileSystemProvider* provider, FileSystemOperations* operations,
                          ConflictDesk* desk = nullptr, QObject* parent = nullptr);
    ~FileSystemDropHandler() override;

    /// drag: an object with the property "mimeData", a map. target: a FileSystem or its name, "local" or
    /// "server".
    Q_INVOKABLE bool dropDrag(QVariant drag, QVariant targetFileSystem, QString targetPath);
    /// mime: "application/type" is "media" or "directory", "application/json" an array of objects with
    /// "fileSystem", "name", "isDirectory" and "path".
    Q_INVOKABLE bool dropMimeData(QMap<QString, QVariant> mime, QVariant targetFileSystem,
                                  QString targetPath);
    /// Files of this computer, as its own file manager drags them. What is neither media nor a folder is left
    /// out, and the operator told.
    Q_INVOKABLE bool dropUrls(const QList<QUrl>& urls, const QVariant& targetFileSystem,
                              const QString& targetPath);
    /// As dropMimeData, but from one side to the other the items are moved.
    Q_INVOKABLE bool moveMimeData(const QVariantMap& mime, const QVariant& targetFileSystem,
                                  const QString& targetPath);
    /// As dropMimeData, but what is put elsewhere on its own side stays where it was as well.
    Q_INVOKABLE bool copyMimeData(const QVariantMap& mime, const QVariant& targetFileSystem,
                                  const QString& targetPath);

private:
    std::unique_ptr<FileSystemDropHandlerPrivate> d;
};

} // namespace vantrel
