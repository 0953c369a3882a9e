#include "common/filesystem/ftp/directsend.h"

#include <QAbstractSocket>
#include <QFileDevice>

#include <cerrno>
#include <sys/sendfile.h>

namespace vantrel {

qint64 sendDirectly(QIODevice* device, const QAbstractSocket& socket, qint64 most)
{
    const auto* file = qobject_cast<QFileDevice*>(device);
    if (!file || file->handle() < 0 || socket.socketDescriptor() < 0)
        return 0;
    off_t at = device->pos();
    ssize_t sent = 0;
    do
        sent = ::sendfile(static_cast<int>(socket.socketDescriptor()), file->handle(), &at,
                          static_cast<std::size_t>(most));
    while (sent < 0 && errno == EINTR);
    return sent > 0 && device->seek(at) ? sent : 0;
}

} // namespace vantrel
