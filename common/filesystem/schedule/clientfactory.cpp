#include "common/filesystem/schedule/clientfactory.h"

#include "common/filesystem/ftp/ftpclient.h"

namespace vantrel {

QSharedPointer<FileSystemClient> ClientFactory::createFtpClient()
{
    return QSharedPointer<FtpClient>::create();
}

} // namespace vantrel
