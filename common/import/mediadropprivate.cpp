// What is to be read, request after request. The files of what was found are in mediadropprivate_results.cpp,
// the writing in mediadropprivate_save.cpp.
#include "common/filesystem/operations/asyncfilesystemreader.h"
#include "common/filesystem/operations/readdirectories.h"
#include "common/import/mediadrop.h"
#include "common/import/mediadrop_p.h"
#include "common/media/address/medialogging.h"
#include "common/media/library/aside.h"

#include <QtConcurrentRun>

#include <chrono>

namespace vantrel {

using namespace std::chrono_literals;

MediaDropPrivate::MediaDropPrivate(MediaDrop* owner, AsyncFileSystemReader* reader,
                                   ImageSequenceCreator* creator, int collection, int startSlot)
    : m_owner(owner)
    , m_reader(reader)
    , m_creator(creator)
    , m_collection(collection)
    , m_startSlot(startSlot)
{
    m_timer.setInterval(50ms);
    connect(&m_timer, &QTimer::timeout, this, &MediaDropPrivate::handleNextAsyncRequest);
    connect(&m_questions, &MediaQuestions::answered, this, [this] {
        if (!addKnownMedias())
            Q_EMIT m_owner->mediasAnswered();
    });
    connect(&m_sorting, &QFutureWatcherBase::finished, this, &MediaDropPrivate::takeResults);
}

MediaDropPrivate::~MediaDropPrivate()
{
    if (m_reader && isListingOurs())
        m_reader->reset(); // nobody is left to take it
}

void MediaDropPrivate::requestAsynchronously(const images::RequestPath& path, FileSystem* fileSystem)
{
    for (images::AsyncRequest& request : m_queue) {
        if (request.fileSystem != fileSystem)
            continue;
        request.paths.append(path);
        m_timer.start();
        Q_EMIT m_owner->lastSlotChanged();
        return;
    }
    requestAsynchronously(images::AsyncRequest{{path}, m_collection, m_startSlot, fileSystem});
}

void MediaDropPrivate::requestAsynchronously(const images::AsyncRequest& request)
{
    m_queue.append(request);
    if (!m_timer.isActive())
        m_timer.start();
    Q_EMIT m_owner->lastSlotChanged();
}

void MediaDropPrivate::handleNextAsyncRequest()
{
    if (!m_questions.isEmpty()) {
        m_questions.goOn();
        if (!addKnownMedias())
            return;
    }
    if (m_isSorting)
        return;
    if (m_current) {
        if (m_listed.isEmpty()) {
            startDirectoryListing(*m_current); // somebody else's was in the way
        } else if (!isListingOurs()) {
            m_listed.clear(); // somebody else has taken the reader
        } else if (m_reader->isReady()) {
            handleFinishedDirectoryListing();
        } else if (!m_reader->isCaching()) {
            handleFailedListing();
        }
        return;
    }
    if (!m_queue.isEmpty()) {
        m_current = m_queue.takeFirst();
        qCDebug(lcMedia) << "Handling next asynchronous request:" << m_current->paths.size()
                         << "path(s). Queue size after:" << m_queue.size();
        startDirectoryListing(*m_current);
        Q_EMIT m_owner->lastSlotChanged();
        return;
    }
    qCDebug(lcMedia) << "All the asynchronous requests have finished.";
    m_timer.stop();
    handleFinishedAsyncRequests();
}

/// What stands in the reader is the current request's.
bool MediaDropPrivate::isListingOurs() const
{
    return m_current && !m_listed.isEmpty() && m_reader->cachePaths() == m_listed &&
           m_reader->fileSystem() == m_current->fileSystem;
}

/// Drops share the reader. One that has read is given some ticks in which whoever asked for it takes it.
bool MediaDropPrivate::isReaderFree()
{
    constexpr int ticks = 4;
    if (m_reader->isCaching())
        return false;
    if (m_reader->cachePaths().isEmpty() || m_waits >= ticks) {
        m_waits = 0;
        return true;
    }
    ++m_waits;
    return false;
}

void MediaDropPrivate::startDirectoryListing(const images::AsyncRequest& request)
{
    QStringList files;
    QStringList directories;
    for (const images::RequestPath& path : request.paths) {
        if (path.type == FileSystem::Directory)
            directories.append(path.path);
        else if (path.type == FileSystem::File)
            files.append(path.path);
        else
            qCWarning(lcMedia) << "Unknown type found for path" << path.path << "- Aborting listing request";
    }
    directories.removeDuplicates();
    if (directories.isEmpty())
        return handleFinishedDirectoryListing(); // there is nothing to read
    if (!isReaderFree())
        return;
    qCDebug(lcMedia) << "Requesting directory caching from" << files << directories;
    m_reader->reset();
    m_reader->setFileSystem(request.fileSystem);
    m_reader->setSearchDepth(1); // the named directories themselves, and not what is below
    m_reader->addCachePaths(directories);
    m_listed = m_reader->cachePaths();
    if (!m_reader->startCaching())
        handleFailedListing();
}

/// A directory that cannot be read fails all that are read with it: they are read anew, each by itself.
void MediaDropPrivate::handleFailedListing()
{
    const images::AsyncRequest failed = *m_current;
    m_current.reset();
    m_listed.clear();
    m_reader->reset();
    QList<images::AsyncRequest> again;
    images::AsyncRequest files = failed;
    files.paths.clear();
    for (const images::RequestPath& path : failed.paths) {
        if (path.type != FileSystem::Directory)
            files.paths.append(path);
        else if (failed.paths.size() == 1)
            leaveOut(path.path, tr("it could not be read."));
        else
            again.append({{path}, failed.collection, failed.slot, failed.fileSystem});
    }
    if (!files.isEmpty())
        again.append(files);
    m_queue = again + m_queue;
    Q_EMIT m_owner->lastSlotChanged();
}

void MediaDropPrivate::handleFinishedDirectoryListing()
{
    qCDebug(lcMedia) << "Handling finished file system caching for asynchronous request";
    const auto sort = [request = *m_current, read = m_listed.isEmpty()
                                                        ? ReadDirectories()
                                                        : m_reader->readDirectories()]() mutable {
        return createResults(request.paths, request.fileSystem, read);
    };
    m_isSorting = true;
    m_sorting.setFuture(QtConcurrent::run(&aside::pool(), sort));
    if (!m_listed.isEmpty())
        m_reader->reset(); // for the next drop
    m_listed.clear();
}

void MediaDropPrivate::takeResults()
{
    const Results results = m_sorting.future().takeResult();
    FileSystem* const fileSystem = m_current->fileSystem;
    m_isSorting = false;
    m_current.reset();
    ++m_requests;
    m_imageResults += results.images;
    for (const QString& path : results.unknown)
        leaveOut(path, tr("it is neither a picture nor video nor sound."));
    Q_EMIT m_owner->imageResultsChanged();
    addMediaPaths(results.otherMedias, fileSystem);
    Q_EMIT m_owner->lastSlotChanged();
}

void MediaDropPrivate::handleFinishedAsyncRequests()
{
    QList<ImageSequenceCandidate> candidates;
    for (const images::ImagesResult& result : std::as_const(m_imageResults)) {
        if (result.isSequence())
            candidates.append(result.getImageSequence());
    }
    if (!candidates.isEmpty())
        Q_EMIT m_owner->imageSequencesFound(candidates, m_collection, m_startSlot);
    qCDebug(lcMedia) << "Finished asynchronous results for" << m_requests << "image requests";
    notifyReady();
}

void MediaDropPrivate::notifyReady()
{
    QTimer::singleShot(0, m_owner, &MediaDrop::isReadyChanged);
}

void MediaDropPrivate::addFault(const QString& text)
{
    m_faults.append(text);
    Q_EMIT m_owner->faultsChanged();
}

} // namespace vantrel
