// What a drop writes: slots that are moved first, then media, sequences and stills, whatever order they came
// in.
#include "common/import/imagesequencecreator.h"
#include "common/import/mediadrop.h"
#include "common/import/mediadrop_p.h"
#include "common/media/address/mediafiles.h"
#include "common/media/address/medialogging.h"
#include "common/media/edit/mediacollectionmanager.h"
#include "tarn/media/mediaenums.h"

namespace vantrel {

using images::StillImage;

int MediaDropPrivate::requiredSlotCount() const
{
    qsizetype count = m_queue.size() + (m_current ? 1 : 0) + m_questions.size() + m_medias.size() +
                      m_collectionSlots.size();
    for (const images::ImagesResult& result : m_imageResults) {
        if (result.isSequence() || result.type() == images::ImageResultType::StillImage)
            ++count;
    }
    return static_cast<int>(count);
}

int MediaDropPrivate::lastSlot() const
{
    const int count = requiredSlotCount();
    return count > 0 ? m_startSlot + count - 1 : -1;
}

qsizetype MediaDropPrivate::storedSlotCount() const
{
    qsizetype count = m_collectionSlots.size() + m_medias.size();
    for (const images::ImagesResult& result : m_imageResults) {
        if (result.isSequence())
            ++count;
        else if (result.type() == images::ImageResultType::StillImage)
            count += result.stillImages().size();
    }
    return count;
}

bool MediaDropPrivate::hasRoom()
{
    const qsizetype slotCount = storedSlotCount();
    const MediaCollectionManager* const manager = m_creator->mediaCollectionManager();
    if (manager && !manager->holdsCollection(m_collection)) {
        addFault(m_collection < 0 ? tr("Its collection is not in the library any more.")
                                  : tr("Collection %1 is not in the library any more.").arg(m_collection));
        return false;
    }
    if (manager && m_startSlot >= 0 &&
        m_startSlot + slotCount - 1 <= manager->lastSlotInCollection(m_collection))
        return true;
    qCWarning(lcMedia) << "No room for" << slotCount << "slot(s) from slot" << m_startSlot << "of collection"
                       << m_collection;
    addFault(tr("There is no room for %1 slots from slot %2 on.").arg(slotCount).arg(m_startSlot));
    return false;
}

void MediaDropPrivate::save()
{
    qCInfo(lcMedia) << "Saving drop to collection" << m_collection << "and slot" << m_startSlot << "with"
                    << m_collectionSlots.size() << "slot repositioning(s)," << m_medias.size()
                    << "media slot(s) and" << m_imageResults.size() << "image result(s)";
    if (!isReady()) {
        qCDebug(lcMedia) << "Drop is not ready. Aborting the save request.";
        return;
    }
    if (!hasRoom())
        return;
    MediaCollectionManager* const manager = m_creator->mediaCollectionManager();
    if (!manager->beginStep(tr("Drop on slot %1 of collection %2").arg(m_startSlot).arg(m_collection)))
        return;
    int current = m_startSlot;
    moveSlots(m_collectionSlots, m_collection, current);
    saveFound(current);
    manager->endStep();
    qCInfo(lcMedia) << "Drop saved from slot" << m_startSlot << "to" << current - 1;
    Q_EMIT m_owner->saved();
}

void MediaDropPrivate::moveSlots(const QList<int>& sourceSlots, int collection, int& current)
{
    MediaCollectionManager* const manager = m_creator->mediaCollectionManager();
    // An edit for each would be a request for each, and hold the window with thousands of them.
    if (sourceSlots.size() > 1) {
        if (const std::optional<bool> moved = manager->moveSlots(collection, sourceSlots, current)) {
            for (const int source : sourceSlots) {
                if (*moved && source != current)
                    Q_EMIT m_owner->collectionSlotMoved(collection, source, current);
                ++current;
            }
            return;
        }
    }
    QHash<int, GuiMediaSlot> overwritten; // by this very drop
    const int last = lastSlot();
    for (const int source : sourceSlots) {
        GuiMediaSlot item;
        if (source >= m_startSlot && source <= last && manager->findMediaSlot(collection, source, item))
            overwritten.insert(source, item);
    }
    for (const int source : sourceSlots) {
        if (source == current)
            qCDebug(lcMedia) << "Moving slot" << source << "to the same slot. Skipping it.";
        else if (const auto item = overwritten.constFind(source); item != overwritten.cend())
            saveMediaToSlot(*item, collection, current);
        else
            moveSlot(collection, source, current);
        ++current;
    }
}

void MediaDropPrivate::moveSlot(int collection, int from, int to)
{
    qCInfo(lcMedia) << "Moving collection" << collection << "slot" << from << "to" << to;
    MediaCollectionManager* const manager = m_creator->mediaCollectionManager();
    GuiMediaSlot there;
    if (manager->findMediaSlot(collection, to, there) && !there.contentUrl().isEmpty())
        manager->clearSlot(collection, to); // nothing is moved onto what is taken
    manager->moveSlot(collection, from, to);
    Q_EMIT m_owner->collectionSlotMoved(collection, from, to);
}

void MediaDropPrivate::saveMediaToSlot(const GuiMediaSlot& item, int collection, int slot)
{
    qCInfo(lcMedia) << "Saving media" << item.name() << "-" << item.contentUrl() << "to collection"
                    << collection << "and slot" << slot;
    m_creator->mediaCollectionManager()->addMedia(collection, slot, item);
    Q_EMIT m_owner->mediaSlotSaved(mediaUrlToString(item.contentUrl()), collection, slot);
}

/// Media, sequences and stills, in one addition: of thousands a second one would hold the window until the
/// first is worked out.
void MediaDropPrivate::saveFound(int& current)
{
    QList<ImageSequenceCandidate> candidates;
    QList<StillImage> stills;
    for (const images::ImagesResult& result : std::as_const(m_imageResults)) {
        if (result.isSequence())
            candidates.append(result.getImageSequence());
        else if (result.type() == images::ImageResultType::StillImage)
            stills += result.stillImages();
    }
    const int firstMedia = current;
    const int firstSequence = firstMedia + static_cast<int>(m_medias.size());
    const int firstStill = firstSequence + static_cast<int>(candidates.size());
    if (!m_medias.isEmpty())
        qCInfo(lcMedia) << "Saving" << m_medias.size() << " medias to collection" << m_collection
                        << "and slot" << firstMedia;
    if (!candidates.isEmpty())
        qCInfo(lcMedia) << "Saving" << candidates.size() << "image sequence(s) to collection" << m_collection
                        << "and slot" << firstSequence;
    if (!stills.isEmpty())
        qCInfo(lcMedia) << "Saving" << stills.size() << "still image(s) to collection" << m_collection
                        << "and slot" << firstStill;
    const QList<GuiMediaSlot> all = m_medias +
                                    ImageSequenceCreator::slotsOf(candidates, m_collection, firstSequence) +
                                    slotsOf(stills, m_collection, firstStill);
    current += static_cast<int>(all.size());
    if (all.isEmpty())
        return;
    m_creator->mediaCollectionManager()->addMedias(m_collection, firstMedia, all);
    m_creator->fetchMetadata(candidates);
    for (qsizetype i = 0; i < m_medias.size(); ++i)
        Q_EMIT m_owner->mediaSlotSaved(mediaUrlToString(m_medias[i].contentUrl()), m_collection,
                                       firstMedia + static_cast<int>(i));
    if (!candidates.isEmpty())
        Q_EMIT m_owner->imageSequencesSaved(candidates, m_collection, firstSequence);
    for (qsizetype i = 0; i < stills.size(); ++i)
        Q_EMIT m_owner->stillImageSaved(stills[i], m_collection, firstStill + static_cast<int>(i));
}

QList<GuiMediaSlot> MediaDropPrivate::slotsOf(const QList<StillImage>& stills, int collection, int slot)
{
    QList<GuiMediaSlot> medias;
    medias.reserve(stills.size());
    for (const StillImage& still : stills) {
        if (medias.size() < mostLogged)
            qCInfo(lcMedia) << "Saving still image" << still.name() << "(duration" << still.durationSeconds
                            << "s) to collection" << collection << "and slot" << slot + medias.size();
        GuiMediaSlot media;
        media.setName(still.name());
        media.setContentUrl(QUrl::fromLocalFile(still.filePath));
        media.setMediaType(MediaType::ImageFile); // the duration is the operator's, not the file's
        media.setDuration(still.durationSeconds);
        media.setDurationType(still.hasInfiniteDuration ? MediaDurationType::Infinite
                                                        : MediaDurationType::Manual);
        medias.append(std::move(media));
    }
    return medias;
}

void MediaDropPrivate::cancel()
{
    qCInfo(lcMedia) << "Canceling drop to collection" << m_collection << "and slot" << m_startSlot << "with"
                    << m_medias.size() << "media(s) and" << m_imageResults.size() << "image sequence(s)";
    if (!isReady()) {
        qCDebug(lcMedia) << "Drop is not ready. Skipping cancel.";
        return;
    }
    m_medias.clear();
    m_imageResults.clear();
    Q_EMIT m_owner->mediasChanged();
    Q_EMIT m_owner->imageResultsChanged();
    Q_EMIT m_owner->lastSlotChanged();
    Q_EMIT m_owner->canceled();
}

} // namespace vantrel
