#include "common/media/library/libraryreading.h"

#include "tarn/media/medialibrary.h"

#include <QThreadPool>
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
    return QtConcurrent::run([pieces] { return read(pieces.join()); });
}

LibraryReading::Remains::Remains(const MediaLibrary& library)
    : m_library(makeRef<MediaLibrary>(library))
{
}

LibraryReading::Remains::~Remains()
{
    std::size_t held = 0;
    for (const auto& [index, collection] : m_library->getCollections())
        held += collection.getSlots().size();
    constexpr std::size_t few = 1000;
    if (held > few)
        QThreadPool::globalInstance()->start([library = std::move(m_library)] {});
}

} // namespace vantrel
