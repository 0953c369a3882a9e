#pragma once

#include "common/import/dropforecast.h"
#include "common/import/imagesequencecreator.h"
#include "common/import/mediaslotdrophandler.h"
#include "common/import/slotpayload.h"

#include <QObject>
#include <QVariantMap>

#include <functional>

class QMimeData;
class QWidget;

namespace vantrel {

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
    /// session: null fetches no metadata. window: over which it asks.
    SlotDrops(Session* session, MediaCollectionManager* manager, FileSystemProvider* fileSystems,
              QWidget* window);
    ~SlotDrops() override;

    /// Of the slots on which is dropped; below 0 takes nothing.
    void setCollection(int collection) { m_collection = collection; }
    /// Why nothing can be changed now, a sentence; empty where it can.
    void setObstacle(const std::function<QString()>& obstacle) { m_obstacle = obstacle; }

    /// A drag has come; false for what is none of ours.
    bool begin(const QMimeData* data);
    /// What a drop on the slot would do. Between begin() and end().
    const DropForecast& aim(int slot);
    void drop(int slot);
    void end();

private:
    void take(MediaDrop* drop);
    void finish(MediaDrop* drop, int toldLast);
    void save(MediaDrop* drop);
    void tell(const MediaDrop& drop) const;
    void refuse(const QString& why) const;

    MediaCollectionManager* m_manager;
    QWidget* m_window;
    ImageSequenceCreator m_creator;
    MediaSlotDropHandler m_handler;
    std::function<QString()> m_obstacle;
    int m_collection = -1;
    QVariantMap m_mime;
    SlotPayload m_payload;
    DropForecast m_forecast;
    int m_aimed = -1;    // the slot of m_forecast
    int m_toldLast = -1; // up to which the operator has seen what a drop overwrites
};

} // namespace vantrel
