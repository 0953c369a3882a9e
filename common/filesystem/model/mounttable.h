#pragma once

#include <QByteArray>
#include <QStringList>

namespace vantrel {

/// Where the volumes are that an operator keeps files on, from the text of /proc/self/mountinfo: disks,
/// sticks and shares, without what the system mounts for itself. Only the table is read: asking the volumes
/// themselves would wait for a share whose server is gone.
QStringList volumesIn(const QByteArray& mountInfo);
/// Where what holds the path is mounted, of whatever kind it is; by the table alone, likewise.
QString volumeAbove(const QByteArray& mountInfo, const QString& path);

} // namespace vantrel
