#pragma once

#include <QByteArrayList>
#include <QFuture>
#include <QString>

namespace vantrel {

/// Show files of this computer, on a thread that may wait for a disk: they are large, and the window goes on.

struct ShowFileReading
{
    QByteArray bytes;
    QString fault; // why there are none; empty where there are
};
QFuture<ShowFileReading> readShowFile(const QString& fileName);

/// An earlier file stays until this one is whole on the disk. The result is why it was not; empty when it
/// was.
QFuture<QString> writeShowFile(const QString& fileName, const QByteArrayList& pieces);

} // namespace vantrel
