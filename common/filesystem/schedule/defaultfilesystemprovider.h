#pragma once

#include "common/filesystem/model/filesystemprovider.h"

#include <QObject>

namespace vantrel {

/// The file systems of the process. A server's follows the session: it connects with it, rests while it has
/// no link, and gives up what runs when the session turns to another server or to another port of the same.
/// Main thread only.
class DefaultFileSystemProvider : public QObject, public FileSystemProvider
{
    Q_OBJECT

public:
    static DefaultFileSystemProvider* instance();

    Q_INVOKABLE vantrel::FileSystem* getServerFileSystem(QUrl address, QString username,
                                                         QString password) override;
    Q_INVOKABLE vantrel::FileSystem* getLocalFileSystem() override;
    Q_INVOKABLE vantrel::FileSystem* getFileSystem(QString kind) override;

protected:
    explicit DefaultFileSystemProvider(QObject* parent = nullptr);
};

/// The same file systems, for a declarative view to make one of its own.
class FileSystemProviderWrapper : public DefaultFileSystemProvider
{
    Q_OBJECT

public:
    explicit FileSystemProviderWrapper(QObject* parent = nullptr);
};

} // namespace vantrel
