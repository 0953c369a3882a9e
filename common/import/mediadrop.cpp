#include "common/import/mediadrop.h"

#include "common/import/mediadrop_p.h"

namespace vantrel {

MediaDrop::MediaDrop(AsyncFileSystemReader* reader, ImageSequenceCreator* creator, int collection,
                     int startSlot, QObject* parent)
    : QObject(parent)
    , d(std::make_unique<MediaDropPrivate>(this, reader, creator, collection, startSlot))
{
}

MediaDrop::~MediaDrop() = default;

int MediaDrop::startSlot() const
{
    return d->m_startSlot;
}

int MediaDrop::lastSlot() const
{
    return d->lastSlot();
}

int MediaDrop::storedSlotCount() const
{
    return static_cast<int>(d->storedSlotCount());
}

int MediaDrop::collection() const
{
    return d->m_collection;
}

void MediaDrop::setCollection(int collection)
{
    if (std::exchange(d->m_collection, collection) != collection)
        Q_EMIT collectionChanged();
}

QList<int> MediaDrop::collectionSlots() const
{
    return d->m_collectionSlots;
}

void MediaDrop::setCollectionSlots(const QList<int>& slotNumbers)
{
    d->m_collectionSlots = slotNumbers;
    Q_EMIT collectionSlotsChanged();
    Q_EMIT lastSlotChanged();
}

QList<GuiMediaSlot> MediaDrop::medias() const
{
    return d->m_medias;
}

void MediaDrop::setMedias(const QList<GuiMediaSlot>& medias)
{
    d->m_medias = medias;
    Q_EMIT mediasChanged();
    Q_EMIT lastSlotChanged();
}

QList<images::ImagesResult> MediaDrop::imageResults() const
{
    return d->m_imageResults;
}

void MediaDrop::setImageResults(const QList<images::ImagesResult>& results)
{
    d->m_imageResults = results;
    Q_EMIT imageResultsChanged();
    Q_EMIT lastSlotChanged();
}

bool MediaDrop::isReady() const
{
    return d->isReady();
}

int MediaDrop::askedCount() const
{
    return d->askedCount();
}

QList<MediaCandidate> MediaDrop::mediaCandidates() const
{
    return d->mediaCandidates();
}

std::optional<MediaCandidate> MediaDrop::askedMedia(qsizetype number) const
{
    if (number < 0 || number >= d->m_questions.size())
        return {};
    const MediaQuestions::Answer* answer = d->m_questions.answerAt(number);
    return answer ? MediaDropPrivate::candidateOf(*answer) : MediaCandidate{d->m_questions.pathAt(number)};
}

void MediaDrop::askFirst(qsizetype number)
{
    d->m_questions.askFirst(number);
}

void MediaDrop::leaveOut(const QList<qsizetype>& medias, const QList<qsizetype>& asked)
{
    d->leaveOutMedias(medias, asked);
}

QStringList MediaDrop::faults() const
{
    return d->m_faults;
}

void MediaDrop::addFault(const QString& text)
{
    d->addFault(text);
}

void MediaDrop::setPatience(std::chrono::milliseconds patience)
{
    d->m_questions.setPatience(patience);
}

void MediaDrop::setIsHeld(bool isHeld)
{
    d->m_questions.setIsHeld(isHeld);
}

QList<ImageSequenceCandidate> MediaDrop::imageSequences() const
{
    QList<ImageSequenceCandidate> candidates;
    for (const images::ImagesResult& result : std::as_const(d->m_imageResults)) {
        if (result.hasImageSequence())
            candidates.append(result.getImageSequence());
    }
    return candidates;
}

QList<images::StillImage> MediaDrop::stillImages() const
{
    QList<images::StillImage> stills;
    for (const images::ImagesResult& result : std::as_const(d->m_imageResults))
        stills += result.stillImages();
    return stills;
}

void MediaDrop::requestAsynchronously(const images::RequestPath& path, FileSystem* fileSystem)
{
    d->requestAsynchronously(path, fileSystem);
}

void MediaDrop::save()
{
    d->save();
}

void MediaDrop::cancel()
{
    d->cancel();
}

} // namespace vantrel
