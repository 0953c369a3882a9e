#pragma once

#include "common/import/dropforecast.h"
#include "common/import/imagesequencecreator.h"
#include "common/import/mediaarrivals.h"
#include "common/import/mediaslotdrophandler.h"
#include "common/import/slotpayload.h"
#include "common/views/collectionnumbers.h"

#include <QDeadlineTimer>
#include <QObject>

#include <functional>

class QMimeData;
class QWidget;

namespace vantrel {

class AbstractMediaLibraryProvider;
class FileSystem;
class FileSystemProvider;
class MediaCollectionManager;
class MediaDrop;
class Session;

/// What the media panel does with a drag over its slots: it says what a drop would do, and has it done as one
/// step of undo, without a question where all that goes was told before. Main thread; what it is given must
/// outlive it.
class SlotDrops : public QObject
{
    Q_OBJECT

public:
    /// session: null takes no files. window: whose it is.
    SlotDrops(Session* session, MediaCollectionManager* manager, QWidget* window);
    ~SlotDrops() override;

    /// Of the slots on which is dropped; below 0 takes nothing.
    void setCollection(int collection) { m_collection = collection; }
    /// Without a session: why nothing can be changed now, a sentence; empty where it can.
    void setObstacle(const std::function<QString()>& obstacle) { m_obstacle = obstacle; }

    /// Whether a drop could be done now.
    bool isTaking() const { return m_collection >= 0 && obstacle().isEmpty(); }

    /// Whether there is such a slot, and it holds nothing.
    bool isFree(int slot) const;

    /// A drag has come; false for what is none of ours.
    bool begin(const QMimeData* data);
    /// The first slot from there on behind which all that is known of the drag finds free slots: what is held
    /// between two slots points at neither. The slot itself where there is no such place.
    int roomFrom(int slot);
    /// What a drop on the slot would do: with Ctrl held slots are copied that would move, with Shift those of
    /// another collection move that would be copied. Between begin() and end().
    const DropForecast& aim(int slot);
    void drop(int slot);
    void end();
    /// Drops it at the first room from the slot on; false for what is none of ours. taken: called once the
    /// server has taken it, for which the operator may have to look at it first; let go of where it is not.
    bool paste(const QMimeData* data, bool isMove, int slot, const std::function<void()>& taken);

    // Of whoever drops by other ways; what they make of it is taken as what is dropped here.
    ImageSequenceCreator* creator() { return &m_creator; }
    MediaSlotDropHandler* handler() { return &m_handler; }

    /// By which whoever asks about a collection follows it.
    CollectionNumbers& numbers() { return m_numbers; }
    /// What of this computer is on its way into slots.
    const MediaArrivals& arrivals() const { return *m_arrivals; }
    /// Of what was dropped on slots, here or in another view, and is not in them yet; empty for none.
    QString pendingText() const { return m_arrivals->pending().text(); }
    /// What that speaks of: nothing of it goes into slots.
    void givePendingUp() { m_arrivals->pending().giveUp(); }

Q_SIGNALS:
    /// What arrivals() says of some slots, or pendingText().
    void arrivalsChanged();
    /// Why nothing can be changed now.
    void obstacleChanged();

private:
    struct Awaiting
    {
        CollectionNumbers::Number collection;
        int slot = -1;
        QUrl media; // which has the file
    };
    struct Made
    {
        MediaDrop* drop;
        FileSystem* server; // whose paths it holds
        MediaArrivals::Plan plan;
        CollectionNumbers::Number collection;
    };

    /// The folders of one gesture, on their way.
    struct Folders
    {
        FileSystem* server;
        CollectionNumbers::Number collection;
        int slot;
        QStringList paths; // on the server, in the order of the gesture; empty while it is not there
        qsizetype awaited;
    };

    void holdDrops();
    void renumberDrops();
    void readKeys();
    void want(bool isCopy, bool isMove);
    void moveOver(const DropForecast& forecast);
    QString obstacle() const;
    QString hindranceOf(const MediaDrop& drop) const;
    void bring(const MediaArrivals::Plan& plan, const CollectionNumbers::Number& collection, int slot,
               int toldLast);
    void bringDirectories(const QStringList& directories, const CollectionNumbers::Number& collection,
                          int slot);
    void dropFolders(const Folders& folders);
    void take(MediaDrop* drop);
    void giveUp(MediaDrop* drop);
    void finish(MediaDrop* drop, int toldLast);
    void review(MediaDrop* drop);
    void follow(MediaDrop* drop);
    void send(const MediaDrop& drop);
    void leaveOutWhatIsGone(MediaDrop* drop);
    FileSystem* server() const;
    void settle(const QUrl& media, bool isSupplanted);
    bool save(MediaDrop* drop);
    void letGo(MediaDrop* drop);
    void tell(const QStringList& faults) const;
    void refuse(const QString& why) const;

    Session* m_session; // null for none
    MediaCollectionManager* m_manager;
    AbstractMediaLibraryProvider* m_library; // null for none
    FileSystemProvider* m_fileSystems;       // null for none
    CollectionNumbers m_numbers;
    ImageSequenceCreator m_creator;
    MediaSlotDropHandler m_handler;
    MediaArrivals* m_arrivals;           // the session's, so that each view shows what any of them has taken
    QHash<QString, Awaiting> m_awaiting; // by path, the slots that were made for files on their way
    QHash<const QObject*, Made> m_made;  // of drops that are not stored yet
    std::function<QString()> m_obstacle;
    int m_collection = -1;
    SlotPayload m_payload;
    DropForecast m_forecast;
    bool m_keysCount = true;        // what is held says what becomes of slots
    std::function<void()> m_stored; // of what is pasted now
    int m_aimed = -1;               // the slot of m_forecast
    QPair<int, int> m_room{-1, -1}; // the last answer of roomFrom()
    MediaArrivals::Plan m_plan;     // of the drop that is made now, where its files have yet to arrive
    QDeadlineTimer m_attention;     // for which the operator looks at what becomes of the last drop
    int m_toldLast = -1;            // up to which the operator has seen what a drop overwrites
};

} // namespace vantrel
