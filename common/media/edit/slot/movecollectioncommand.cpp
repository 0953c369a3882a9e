#include "common/media/edit/slot/movecollectioncommand.h"

#include "common/command/commandlogging.h"
#include "common/media/edit/playlist/followslots.h"
#include "tarn/media/medialibrary.h"

#include <utility>
#include <vector>

namespace vantrel {

namespace {

void renumber(MediaLibrary& library, const std::map<int, int>& numbers)
{
    std::vector<std::pair<int, MediaCollection>> moved; // all of them first: they lie where others go
    for (const auto& [from, to] : numbers)
        moved.emplace_back(to, *std::as_const(library).findCollection(from));
    for (const auto& [from, to] : numbers)
        library.removeCollection(from);
    for (const auto& [to, collection] : moved)
        library.insertMediaCollection(to, collection, false);
}

} // namespace

std::map<int, int> MoveCollectionCommand::numbersFor(const MediaLibrary& library, int collection, int before)
{
    const MediaCollectionMap& collections = library.getCollections();
    if (!collections.contains(collection) || (before >= 0 && !collections.contains(before)))
        return {};
    int previous = MediaLibrary::getCollectionIndexMin() - 1;
    int next = MediaLibrary::getCollectionIndexMax() + 1;
    for (const auto& [number, each] : collections) {
        if (before >= 0 && number >= before) {
            next = number;
            break;
        }
        previous = number;
    }
    if (collection == previous || collection == next)
        return {}; // it stands there already
    const bool isFirst = previous < MediaLibrary::getCollectionIndexMin();
    const bool isLast = next > MediaLibrary::getCollectionIndexMax();
    const bool hasRoom = next - previous > 1;
    const int step = collection > next ? 1 : -1;
    const int taken = collection > next ? next : previous;
    std::map<int, int> numbers{{collection, taken}};
    int number = taken;
    for (; number != collection && collections.contains(number); number += step)
        numbers.emplace(number, number + step);
    const bool isExchange = number == collection;
    if (hasRoom && !(isExchange && (isFirst || isLast)))
        return {{collection, isFirst ? next - 1 : previous + 1}};
    return numbers;
}

bool MoveCollectionCommand::init(const MediaLibrary* library, int collection, int before)
{
    const QString text = before < 0 ? tr("Move collection %1 behind all others").arg(collection)
                                    : tr("Move collection %1 in front of %2").arg(collection).arg(before);
    return rehearse(library, text, [=](MediaLibrary& copy) {
        const std::map<int, int> numbers = numbersFor(copy, collection, before);
        if (numbers.empty()) {
            qCWarning(lcCommand) << "Unable to move collection" << collection << "before" << before;
            return false;
        }
        renumber(copy, numbers);
        followSlots(copy, [&numbers](const MediaAddress& slot) {
            const auto number = numbers.find(slot.collection);
            return number == numbers.end() ? MediaAddress() : MediaAddress(number->second, slot.slot);
        });
        return true;
    });
}

} // namespace vantrel
