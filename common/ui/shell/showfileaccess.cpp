#include "common/ui/shell/showfileaccess.h"

#include "common/filesystem/model/filesize.h"
#include "common/media/library/aside.h"

#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>
#include <QtConcurrentRun>

namespace vantrel {

namespace {

/// What any server takes, in bytes: what is larger was chosen by mistake, and may be larger than the memory.
constexpr qint64 largest = 272LL * 1024 * 1024;

ShowFileReading read(const QString& fileName)
{
    QFile file(fileName);
    ShowFileReading reading;
    if (!file.open(QIODevice::ReadOnly)) {
        reading.fault = file.errorString();
    } else if (file.size() > largest) {
        reading.fault =
            QCoreApplication::translate("ShowManager", "The file is larger than a show may be (%1).")
                .arg(fileSizeText(largest));
    } else {
        reading.bytes = file.read(largest);
        if (file.error() != QFileDevice::NoError)
            reading.fault = file.errorString();
    }
    return reading;
}

QString write(const QString& fileName, const QByteArrayList& pieces)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    for (const QByteArray& piece : pieces) {
        if (file.write(piece) != piece.size())
            return file.errorString();
    }
    return file.commit() ? QString() : file.errorString();
}

} // namespace

QFuture<ShowFileReading> readShowFile(const QString& fileName)
{
    return QtConcurrent::run(&aside::files(), [fileName] { return read(fileName); });
}

QFuture<QString> writeShowFile(const QString& fileName, const QByteArrayList& pieces)
{
    return QtConcurrent::run(&aside::files(), [fileName, pieces] { return write(fileName, pieces); });
}

} // namespace vantrel
