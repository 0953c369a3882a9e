#include "common/media/library/libraryreading.h"

#include "common/media/library/aside.h"
#include "tarn/media/medialibrary.h"

#include <QtConcurrentRun>

#include <string>

namespace vantrel {

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
    return QtConcurrent::run(&aside::pool(), [pieces] {
        aside::giveWay();
        return read(pieces.join());
    });
}

LibraryReading::Remains::Remains(const MediaLibrary& library)
    : m_library(makeRef<MediaLibrary>(library))
{
}

LibraryReading::Remains::~Remains()
{
    aside::letGo(std::move(m_library));
}

} // namespace vantrel
