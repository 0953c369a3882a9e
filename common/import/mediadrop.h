#pragma once

#include "common/import/asyncrequest.h"
#include "common/import/imagesresult.h"
#include "common/import/mediacandidate.h"
#include "common/media/items/guimediaslot.h"

#include <QList>
#include <QObject>
#include <QStringList>

#include <chrono>
#include <memory>
#include <optional>

namespace vantrel {

class AsyncFileSystemReader;
class FileSystem;
class ImageSequenceCreator;
class MediaDropPrivate;

/// One act of dropping things onto a slot: slots of the collection, ready media, files and whole directories.
/// It reads what has to be read, tells all the while how many slots it will take, lets the operator look at
/// what was found, and writes all of it on save() as one step of undo, or nothing. Main thread only; what it
/// is given must outlive it.
class MediaDrop : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int startSlot READ startSlot CONSTANT)
    Q_PROPERTY(int lastSlot READ lastSlot NOTIFY lastSlotChanged)
    Q_PROPERTY(int collection READ collection NOTIFY collectionChanged)
    Q_PROPERTY(QList<int> collectionSlots READ collectionSlots WRITE setCollectionSlots NOTIFY
                   collectionSlotsChanged)
    Q_PROPERTY(QList<vantrel::GuiMediaSlot> medias READ medias WRITE setMedias NOTIFY mediasChanged)
    Q_PROPERTY(QList<vantrel::images::ImagesResult> imageResults READ imageResults WRITE setImageResults
                   NOTIFY imageResultsChanged)
    Q_PROPERTY(bool isReady READ isReady NOTIFY isReadyChanged)
    /// What was left out, and why: a sentence each, plain text.
    Q_PROPERTY(QStringList faults READ faults NOTIFY faultsChanged)

public:
    MediaDrop(AsyncFileSystemReader* reader, ImageSequenceCreator* creator, int collection, int startSlot,
              QObject* parent = nullptr);
    ~MediaDrop() override;

    int startSlot() const;
    /// -1 for a drop of nothing. What is still to be read counts as one slot each.
    int lastSlot() const;
    /// So many slots does save() write. lastSlot() counts a sequence that is to become stills as one.
    int storedSlotCount() const;
    int collection() const;
    /// It has another number by now.
    void setCollection(int collection);
    /// Slots of the same collection that are moved here.
    QList<int> collectionSlots() const;
    void setCollectionSlots(const QList<int>& slotNumbers);
    QList<GuiMediaSlot> medias() const;
    void setMedias(const QList<GuiMediaSlot>& medias);
    QList<images::ImagesResult> imageResults() const;
    void setImageResults(const QList<images::ImagesResult>& results);
    /// Nothing is left to be read.
    bool isReady() const;
    /// So many files are found of which nobody has told yet whether they play; nothing else is left to be
    /// read then. 0 also before that.
    int askedCount() const;
    /// The medias(), with those that are left out among them, and behind them the askedCount() files.
    QList<MediaCandidate> mediaCandidates() const;
    /// One of the askedCount() files, as far as it is known; nothing for no such number.
    std::optional<MediaCandidate> askedMedia(qsizetype number) const;
    /// Somebody looks at it: it is asked before those that are not asked yet.
    void askFirst(qsizetype number);
    /// Leaves some of the medias() and of the asked files out; both ascending.
    void leaveOut(const QList<qsizetype>& medias, const QList<qsizetype>& asked);
    QStringList faults() const;
    /// What whoever made it has left out; a sentence, plain text.
    void addFault(const QString& text);

    /// For so long it waits to be told what one file holds; 25 seconds.
    void setPatience(std::chrono::milliseconds patience);
    /// Held, it waits without an end.
    void setIsHeld(bool isHeld);

    QList<ImageSequenceCandidate> imageSequences() const;
    QList<images::StillImage> stillImages() const;

    /// Has a file or a directory read; isReadyChanged() comes when all is.
    void requestAsynchronously(const images::RequestPath& path, FileSystem* fileSystem);

public Q_SLOTS:
    /// Writes the drop, unless it is still at work or does not fit into the collection.
    void save();
    /// Lets go of what was found, unless it is still at work.
    void cancel();

Q_SIGNALS:
    void collectionChanged();
    void lastSlotChanged();
    void collectionSlotsChanged();
    void mediasChanged();
    /// These were found, and are asked behind all others.
    void mediasAsked(const QStringList& paths);
    /// Of the first of those that are asked, which are none of them any more.
    void mediasTold(const QList<vantrel::MediaCandidate>& candidates);
    /// More is known of those that are asked.
    void mediasAnswered();
    void imageResultsChanged();
    void imageSequencesFound(QList<vantrel::ImageSequenceCandidate> sequenceCandidates, int targetCollection,
                             int targetSlot);
    void isReadyChanged();
    void faultsChanged();
    void saved();
    void canceled();
    void collectionSlotMoved(int collection, int fromSlot, int toSlot);
    void mediaSlotSaved(QString media, int collection, int slot);
    void imageSequencesSaved(QList<vantrel::ImageSequenceCandidate> sequences, int collection, int slot);
    void stillImageSaved(vantrel::images::StillImage stillImage, int collection, int slot);

private:
    std::unique_ptr<MediaDropPrivate> d;
};

} // namespace vantrel
