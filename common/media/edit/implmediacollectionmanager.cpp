#include "common/media/edit/implmediacollectionmanager.h"

#include "common/command/commandgate.h"
#include "common/media/address/medialogging.h"
#include "common/media/address/mediautils.h"
#include "common/media/edit/slot/addmediatocollectioncommand.h"
#include "common/media/edit/slot/clearslotfromcollectioncommand.h"
#include "common/media/edit/slot/copycollectioncommand.h"
#include "common/media/edit/slot/insertcollectioncommand.h"
#include "common/media/edit/slot/moveslotincollectioncommand.h"
#include "common/media/edit/slot/moveslotstocollectioncommand.h"
#include "common/media/edit/slot/removecollectioncommand.h"
#include "common/media/edit/slot/renamecollectioncommand.h"
#include "common/media/edit/slot/setdurationcommand.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/session/session.h"
#include "tarn/media/enumtext.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QUndoStack>

namespace vantrel {

namespace {

GuiMediaSlot slotFromJson(const QJsonObject& json)
{
    GuiMediaSlot slot;
    slot.setName(json.value(QStringLiteral("name")).toString());
    slot.setContentUrl(QUrl::fromLocalFile(json.value(QStringLiteral("path")).toString()));
    slot.setDuration(json.value(QStringLiteral("duration")).toDouble());
    slot.setIsPlayable(json.value(QStringLiteral("isPlayable")).toBool());
    if (const QJsonValue value = json.value(QStringLiteral("scaleMode")); !value.isUndefined()) {
        ScaleMode mode = ScaleMode::Default;
        if (!fromStr(value.toString().toStdString(), mode))
            qCWarning(lcMedia) << "Invalid scale mode:" << value.toString();
        slot.setScaleMode(mode);
    }
    const QJsonValue sequence = json.value(QStringLiteral("imageSequence"));
    if (sequence.isUndefined() || sequence.isNull())
        return slot;
    // The key only says that this is a sequence; its numbers stand beside it.
    if (const QJsonValue rate = json.value(QStringLiteral("framerate")); rate.isDouble())
        slot.setFrameRate(rate.toDouble());
    if (const QJsonValue first = json.value(QStringLiteral("firstFrame")); first.isDouble())
        slot.setFirstFrame(first.toInt());
    if (const QJsonValue last = json.value(QStringLiteral("lastFrame")); last.isDouble())
        slot.setLastFrame(last.toInt());
    return slot;
}

} // namespace

ImplMediaCollectionManager::ImplMediaCollectionManager(QObject* parent)
    : QObject(parent)
{
}

MediaLibrary* ImplMediaCollectionManager::library() const
{
    Session* session = Session::instance();
    return session && session->mediaLibraryProvider() ? session->mediaLibraryProvider()->mediaLibrary()
                                                      : nullptr;
}

/// The library with the edits that are under way: a number that one of them takes is not free any more.
Ref<const MediaLibrary> ImplMediaCollectionManager::expected() const
{
    const MediaLibraryApi* api = Session::instance() ? Session::instance()->getMediaLibraryApi() : nullptr;
    MediaLibrary* const media = library();
    return api && media == &api->library() ? api->expectedLibrary() : Ref<const MediaLibrary>(media);
}

bool ImplMediaCollectionManager::execute(std::unique_ptr<AbstractSessionCommand> command)
{
    Session* session = Session::instance();
    return session && session->executeCommand(command.release());
}

template <typename Command, typename... Args>
bool ImplMediaCollectionManager::run(Args&&... args)
{
    auto command = std::make_unique<Command>();
    if (!command->init(library(), std::forward<Args>(args)...))
        return false;
    return execute(std::move(command));
}

bool ImplMediaCollectionManager::removeCollection(int collection)
{
    const Ref<const MediaLibrary> media = expected();
    if (!media || !media->findCollection(collection)) {
        qCWarning(lcMedia) << "Collection" << collection << "removal failed since it doesn't exist";
        return false;
    }
    return run<RemoveCollectionCommand>(collection);
}

int ImplMediaCollectionManager::firstFreeCollection() const
{
    const Ref<const MediaLibrary> media = expected();
    if (!media)
        return -1;
    int candidate = media->getCollectionIndexMin();
    for (const auto& [index, collection] : media->getCollections()) {
        if (index == candidate)
            ++candidate;
    }
    return candidate;
}

bool ImplMediaCollectionManager::appendCollection(const QString& name)
{
    const int index = firstFreeCollection();
    static const QString defaultName = tr("My collection %1");
    return insertCollection(index, name.isEmpty() ? defaultName.arg(index) : name);
}

bool ImplMediaCollectionManager::insertCollection(int collection, const QString& name)
{
    const Ref<const MediaLibrary> media = expected();
    if (!media)
        return false;
    if (collection > media->getCollectionIndexMax()) {
        qCWarning(lcMedia) << "Too large index for collection:" << collection;
        return false;
    }
    if (media->findCollection(collection)) {
        qCWarning(lcMedia) << "Collection" << name << "insert to" << collection
                           << "failed since it already exists";
        return false;
    }
    return run<InsertCollectionCommand>(collection, name);
}

bool ImplMediaCollectionManager::copyCollection(int fromCollection, int toCollection)
{
    const Ref<const MediaLibrary> media = expected();
    if (!media)
        return false;
    const int target = toCollection == -1 ? firstFreeCollection() : toCollection;
    if (target > media->getCollectionIndexMax()) {
        qCWarning(lcMedia) << "Too large index for collection:" << target;
        return false;
    }
    if (!media->findCollection(fromCollection)) {
        qCWarning(lcMedia) << "Collection copying from" << fromCollection << "to" << target
                           << "failed since the source doesn't exist";
        return false;
    }
    return run<CopyCollectionCommand>(fromCollection, target);
}

bool ImplMediaCollectionManager::holdsCollection(int collection) const
{
    const Ref<const MediaLibrary> media = expected();
    return media && media->findCollection(collection);
}

bool ImplMediaCollectionManager::isSlotOccupied(int collection, int slot) const
{
    const Ref<const MediaLibrary> media = expected();
    return media && media->findSlot(collection, slot);
}

bool ImplMediaCollectionManager::holdsMedia(int collection, int slot) const
{
    const Ref<const MediaLibrary> media = expected();
    const MediaSlot* record = media ? media->findSlot(collection, slot) : nullptr;
    return record && !record->getUrl().empty();
}

bool ImplMediaCollectionManager::findMediaSlot(int collection, int slot, GuiMediaSlot& result) const
{
    const Ref<const MediaLibrary> media = expected();
    const MediaSlot* record = media ? media->findSlot(collection, slot) : nullptr;
    if (!record)
        return false;
    result = GuiMediaSlot(MediaAddress(collection, slot), *record);
    return true;
}

int ImplMediaCollectionManager::lastSlotInCollection(int collection) const
{
    Q_UNUSED(collection); // all collections have the same room
    return MediaCollection::getMediaSlotIndexMax();
}

void ImplMediaCollectionManager::addMedia(int collection, int slot, const QList<QString>& medias)
{
    if (medias.isEmpty())
        return;
    addMedia(collection, slot, slotFromJson(QJsonDocument::fromJson(medias.first().toUtf8()).object()));
}

void ImplMediaCollectionManager::clearSlot(int collection, int slot)
{
    run<ClearSlotFromCollectionCommand>(collection, slot);
}

void ImplMediaCollectionManager::moveSlot(int collection, int fromSlot, int toSlot)
{
    run<MoveSlotInCollectionCommand>(collection, fromSlot, toSlot);
}

std::optional<bool> ImplMediaCollectionManager::moveSlots(int collection, const QList<int>& fromSlots,
                                                          int toSlot)
{
    QList<MediaAddress> from;
    from.reserve(fromSlots.size());
    for (const int slot : fromSlots)
        from.append(MediaAddress(collection, slot));
    return moveSlotsFrom(from, collection, toSlot);
}

bool ImplMediaCollectionManager::moveSlotsFrom(const QList<MediaAddress>& from, int collection, int toSlot)
{
    return run<MoveSlotsToCollectionCommand>(from, collection, toSlot);
}

void ImplMediaCollectionManager::addMedia(int collection, int slot, const GuiMediaSlot& mediaSlot)
{
    addMedias(collection, slot, {mediaSlot});
}

void ImplMediaCollectionManager::addMedias(int collection, int slot, const QList<GuiMediaSlot>& mediaSlots)
{
    run<AddMediaToCollectionCommand>(collection, slot, mediaSlots);
}

void ImplMediaCollectionManager::renameCollection(int collection, const QString& name)
{
    run<RenameCollectionCommand>(collection, name);
}

bool ImplMediaCollectionManager::updateMediaDuration(int collection, int slot, double durationSeconds,
                                                     bool isInfinite)
{
    GuiMediaSlot present;
    if (!findMediaSlot(collection, slot, present))
        return false;
    if (isInfinite == present.hasInfiniteDuration() && qFuzzyCompare(durationSeconds, present.duration()))
        return true;
    return run<SetDurationCommand>(QUrl(media::MediaUtils::toSlotAddress(collection, slot)), durationSeconds,
                                   isInfinite);
}

bool ImplMediaCollectionManager::updateMedia(int collection, int slot, const GuiMediaSlot& newMediaSlot)
{
    GuiMediaSlot present;
    if (!findMediaSlot(collection, slot, present))
        return false;
    if (present.duration() == newMediaSlot.duration() &&
        present.durationType() == newMediaSlot.durationType())
        return true;
    return run<SetDurationCommand>(present.contentUrl(), newMediaSlot.duration(),
                                   newMediaSlot.hasInfiniteDuration(), MediaAddress(collection, slot));
}

bool ImplMediaCollectionManager::beginStep(const QString& text)
{
    Session* session = Session::instance();
    if (!session)
        return true; // each command says so by itself
    if (!CommandGate::passes(session->getQUndoStack(), text))
        return false;
    session->getQUndoStack()->beginMacro(text);
    return true;
}

void ImplMediaCollectionManager::endStep()
{
    Session* session = Session::instance();
    if (!session)
        return;
    QUndoStack* const stack = session->getQUndoStack();
    stack->endMacro();
    // Where nothing was taken there is nothing to undo.
    const QUndoCommand* const step = stack->command(stack->index() - 1);
    if (step && step->childCount() == 0) {
        const_cast<QUndoCommand*>(step)->setObsolete(true); // the stack gives out no other, and drops it so
        stack->undo();
    }
}

} // namespace vantrel
