#include "common/ui/shell/showfileaccess.h"

#include "common/filesystem/model/filesize.h"

#include <QCoreApplication>
#include <QFile>
#include <QPromise>
#include <QSaveFile>
#include <QThreadPool>

#include <memory>

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

template <typename Work>
auto aside(Work work)
{
    const auto promise = std::make_shared<QPromise<decltype(work())>>();
    promise->start();
    QThreadPool::globalInstance()->start([promise, work = std::move(work)] {
        promise->addResult(work());
        promise->finish();
    });
    return promise->future();
}

} // namespace

QFuture<ShowFileReading> readShowFile(const QString& fileName)
{
    return aside([fileName] { return read(fileName); });
}

QFuture<QString> writeShowFile(const QString& fileName, const QByteArrayList& pieces)
{
    return aside([fileName, pieces] { return write(fileName, pieces); });
}

} // namespace vantrel
