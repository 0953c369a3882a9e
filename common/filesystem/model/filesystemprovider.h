#pragma once

#include <QString>
#include <QUrl>

namespace vantrel {

class FileSystem;

/// Hands out the file systems of the process, which stay its own.
class FileSystemProvider
{
public:
    virtual ~FileSystemProvider() = default;

    /// One for each address; of a known address the name and the password are ignored.
    virtual FileSystem* getServerFileSystem(QUrl address, QString username, QString password) = 0;
    virtual FileSystem* getLocalFileSystem() = 0;
    /// "local" or "server"; null for anything else, and for a server that is not there yet.
    virtual FileSystem* getFileSystem(QString kind) = 0;
};

} // namespace vantrel
