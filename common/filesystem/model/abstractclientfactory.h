#pragma once

#include <QSharedPointer>

namespace vantrel {

class FileSystemClient;

/// Makes the client through which a server's file system works.
class AbstractClientFactory
{
public:
    virtual ~AbstractClientFactory() = default;

    virtual QSharedPointer<FileSystemClient> createFtpClient() = 0;
};

} // namespace vantrel
