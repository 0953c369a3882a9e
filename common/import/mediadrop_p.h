#pragma once

#include "common/import/asyncrequest.h"
#include "common/import/imagesresult.h"
#include "common/import/mediacandidate.h"
#include "common/import/mediaquestions.h"
#include "common/media/items/guimediaslot.h"

#include <QFutureWatcher>
#include <QHash>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <map>
#include <optional>

namespace vantrel {

class AsyncFileSystemReader;
class FileSystemReader;
class ImageSequenceCreator;
class MediaDrop;

class MediaDropPrivate : public QObject
{
    Q_OBJECT

public:
    MediaDropPrivate(MediaDrop* owner, AsyncFileSystemReader* reader, ImageSequenceCreator* creator,
                     int collection, int startSlot);
    ~MediaDropPrivate() override;

    using PathTypes = std::map<QString, FileSystem::ItemType>;

    // What is to be read, request after request.
    bool isReady() const { return !m_timer.isActive() && m_queue.isEmpty(); }
    void requestAsynchronously(const images::RequestPath& path, FileSystem* fileSystem);
    void requestAsynchronously(const images::AsyncRequest& request);
    void startDirectoryListing(const images::AsyncRequest& request);
    bool isReaderFree();
    bool isListingOurs() const;
    void handleFailedListing();
    void handleFinishedDirectoryListing();
    void handleFinishedAsyncRequests();
    void notifyReady();

    // What was found.
    struct Results
    {
        QList<images::ImagesResult> images;
        QStringList otherMedias;
        QStringList unknown; // neither
    };

    // On a thread: what thousands of names are takes longer than a picture of the screen.
    static Results createResults(const QList<images::RequestPath>& requestPaths, FileSystem* fileSystem,
                                 FileSystemReader& reader);
    static QStringList extractAllPaths(const images::RequestPath& requestPath, FileSystemReader& reader);
    static QList<images::StillImage> takePictures(const ImageSequenceCandidate& candidate,
                                                  PathTypes& remaining);
    void takeResults();
    void addMediaPaths(const QStringList& paths, FileSystem* fileSystem);
    bool addKnownMedias();
    static MediaCandidate candidateOf(const MediaQuestions::Answer& answer);
    QList<MediaCandidate> mediaCandidates() const;
    void leaveOutMedias(const QList<qsizetype>& medias, const QList<qsizetype>& asked);
    int askedCount() const;
    void leaveOut(const QString& path, const QString& why);
    void addFault(const QString& text);

    // What is written.
    int requiredSlotCount() const;
    int lastSlot() const;
    qsizetype storedSlotCount() const;
    bool hasRoom();
    void save();
    void cancel();
    void moveSlots(const QList<int>& sourceSlots, int collection, int& current);
    void moveSlot(int collection, int from, int to);
    void saveMediaToSlot(const GuiMediaSlot& item, int collection, int slot);
    void saveFound(int& current);
    static QList<GuiMediaSlot> slotsOf(const QList<images::StillImage>& stills, int collection, int slot);

    MediaDrop* m_owner;
    AsyncFileSystemReader* m_reader;
    ImageSequenceCreator* m_creator;
    QTimer m_timer;
    int m_collection;
    int m_startSlot;
    QList<images::AsyncRequest> m_queue;
    std::optional<images::AsyncRequest> m_current;
    QList<GuiMediaSlot> m_medias;
    QList<images::ImagesResult> m_imageResults;
    QList<int> m_collectionSlots;

    bool m_isSorting = false; // the results of the current request are made, or wait to be taken
    QFutureWatcher<Results> m_sorting;
    QStringList m_listed;         // the directories that the reader was given for the current request
    int m_waits = 0;              // ticks for which a listing of somebody else's has stood in the reader
    qsizetype m_requests = 0;     // done
    MediaQuestions m_questions;   // of files of which it is not known yet whether they play
    QList<MediaCandidate> m_told; // those that were asked, in their order
    QStringList m_faults;

public Q_SLOTS:
    void handleNextAsyncRequest();
};

} // namespace vantrel
