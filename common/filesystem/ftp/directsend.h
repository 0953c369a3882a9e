#pragma once

#include <QtGlobal>

class QAbstractSocket;
class QIODevice;

namespace vantrel {

/// Sends bytes of a file from where it stands straight out of the system's cache, which spares this process
/// both copies, and moves the file on. At most so many; as many as the socket takes without waiting. 0 where
/// it takes none, at the end, on an error, and for devices that are no files: who sends goes on by reading
/// and writing, and is told there what is wrong. Nothing may be waiting in the socket.
qint64 sendDirectly(QIODevice* device, const QAbstractSocket& socket, qint64 most);

} // namespace vantrel
