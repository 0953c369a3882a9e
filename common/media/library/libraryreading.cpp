#include "common/media/library/libraryreading.h"

#include "tarn/media/medialibrary.h"

#include <QThreadPool>
#include <QtConcurrentRun>

#include <string>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace vantrel {

namespace {

/// Of its own, since its threads give way to all others: to the window, and to a server on the same machine.
QThreadPool& asidePool()
{
    static QThreadPool pool;
    return pool;
}

/// The thread of this pool that calls it. Qt's own priorities mean nothing here.
void giveWay()
{
#ifdef Q_OS_LINUX
    constexpr int niceness = 10;
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), niceness);
#endif
}

} // namespace

LibraryReading LibraryReading::read(const QByteArray& body)
{
    LibraryReading reading;
    Json json;
    std::string error;
    if (!Json::parseString({body.constData(), static_cast<std::size_t>(body.size())}, json, &error)) {
        reading.error = QByteArray::fromStdString(error);
        return reading;
    }
    auto library = makeRef<MediaLibrary>();
    if (!library->parseJson(json, &error)) {
        reading.outcome = Outcome::NoLibrary;
        reading.error = QByteArray::fromStdString(error);
        return reading;
    }
    MediaLibrary settled(*library); // what a first copy costs is paid here
    reading.outcome = Outcome::Library;
    reading.library = library;
    return reading;
}

QFuture<LibraryReading> LibraryReading::start(const QByteArrayList& pieces)
{
    return QtConcurrent::run(&asidePool(), [pieces] {
        giveWay();
        return read(pieces.join());
    });
}

LibraryReading::Remains::Remains(const MediaLibrary& library)
    : m_library(makeRef<MediaLibrary>(library))
{
}

LibraryReading::Remains::~Remains()
{
    asidePool().start([library = std::move(m_library)] { giveWay(); });
}

} // namespace vantrel
