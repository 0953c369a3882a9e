// What the main thread pays for a library: a message of the event stream until the model has told its row,
// and the heap that mirrors of a library take beside the library itself.
#include "bench/json_library.h"
#include "common/media/models/collectionselectormodel.h"
#include "common/media/models/sortedlibrarymodel.h"
#include "tarn/media/mediaenums.h"
#include "tests/support/mediamirror.h"

#include <QGuiApplication>
#include <QLoggingCategory>
#include <QTest>

#include <ctime>

using namespace vantrel;
using namespace vantrel::bench;
using vantrel::test::MediaMirror;

namespace {

/// A mirror that got its library as after a fetch.
struct Window
{
    explicit Window(const MediaLibrary& library)
        : mirror(makeRef<MediaLibrary>())
    {
        *mirror.library = library;
        mirror.load();
    }
    MediaMirror mirror;
};

Ref<MediaLibrary> libraryOf(const LibraryShape& shape)
{
    Json json;
    auto library = makeRef<MediaLibrary>();
    std::string error;
    if (!Json::parseString(LibraryText(shape).make(), json, &error) || !library->parseJson(json, &error))
        qFatal("%s", error.c_str());
    return library;
}

/// The bytes of a read from the stream that changes a slot's out point.
QByteArray messageFor(const LibraryShape& shape, int slot, int version)
{
    return QStringLiteral("data: [{\"op\":\"replace\",\"path\":\"/collections/%1/slots/%2/outpoint\","
                          "\"value\":%3}]\n\n")
        .arg(shape.collectionOf(slot))
        .arg(shape.placeOf(slot))
        .arg(20 + version % 50)
        .toUtf8();
}

double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Median main-thread seconds of a message from its bytes to the last signal.
template <typename Message>
double medianCost(MediaMirror& mirror, int count, const int& told, Message&& message)
{
    std::vector<double> costs;
    const int before = told;
    for (int i = 0; i < count; ++i) {
        const QByteArray bytes = message(i);
        const double start = threadSeconds();
        mirror.api.receive(bytes);
        costs.push_back(threadSeconds() - start);
    }
    if (told - before < count)
        qFatal("a message was not told");
    std::sort(costs.begin(), costs.end());
    return costs[costs.size() / 2];
}

double oneSlot(int count)
{
    const LibraryShape shape{count, 100};
    Window window(*libraryOf(shape));
    MediaMirror& mirror = window.mirror;
    SortedLibraryModel sorted(&mirror.model);
    int told = 0;
    QObject::connect(&mirror.model, &QAbstractItemModel::dataChanged, &mirror.model,
                     [&](const QModelIndex& from) { told += from.parent().isValid(); });
    return medianCost(mirror, 500, told, [&](int i) {
        return messageFor(shape, static_cast<int>(static_cast<unsigned>(i) * 7919U) % shape.slots, i);
    });
}

double fiftyEntries()
{
    const LibraryShape shape{100000, 100};
    const auto library = libraryOf(shape);
    // Every second of 100 playlists plays the slot near its beginning, so that nearly all their times move.
    const MediaAddress shared(1, 1);
    library->findSlot(1, 1)->setDurationType(MediaDurationType::Manual);
    library->findSlot(1, 1)->setInherentMediaDuration(3600);
    library->findSlot(1, 1)->setCustomMediaDuration(std::nullopt);
    for (const auto& [number, collection] : MediaCollectionMap(library->getCollections())) {
        for (const auto& [index, slot] : collection.getSlots())
            library->findSlot(number, index)->setDurationType(MediaDurationType::Manual);
    }
    for (int number = 2; number <= 100; number += 2)
        library->findPlaylistEntry(number, {2, 0})->setMediaUrl(shared.toString());
    Window window(*library);
    MediaMirror& mirror = window.mirror;
    // Long lists are read in turns of their own.
    if (!QTest::qWaitFor([&] { return mirror.playlists.slotEntries(shared).size() >= 50; }, 20000))
        qFatal("the slot is not shared");
    int told = 0;
    QObject::connect(&mirror.playlists, &AbstractPlaylistProvider::entrySlotsModified, &mirror.model,
                     [&] { ++told; });
    return medianCost(mirror, 100, told, [&](int i) { return messageFor(shape, 0, i); });
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    const double small = oneSlot(1000);
    const double large = oneSlot(100000);
    report("library/stream-message-one-slot", "the limit of 1 ms", large * 1e6, 1000, "us", 1e-3 / large, 1);
    report("library/stream-message-one-slot-growth", "1,000 slots, of which 5 times the cost is allowed",
           large * 1e6, small * 5e6, "us", small * 5 / large, 1);
    const double shared = fiftyEntries();
    report("library/stream-message-50-entries", "the limit of 5 ms", shared * 1e6, 5000, "us", 5e-3 / shared,
           1);
    return 0;
}
