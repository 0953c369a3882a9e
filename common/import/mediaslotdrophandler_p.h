#pragma once

#include "common/filesystem/operations/asyncfilesystemreader.h"
#include "common/import/slotpayload.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QSharedPointer>
#include <QVariant>

namespace vantrel {

class FileSystem;
class FileSystemProvider;
class GuiMediaSlot;
class ImageSequenceCreator;
class MediaDrop;
class MediaSlotDropHandler;

class MediaSlotDropHandlerPrivate : public QObject
{
    Q_OBJECT

public:
    MediaSlotDropHandlerPrivate(MediaSlotDropHandler* owner, ImageSequenceCreator* creator,
                                FileSystemProvider* fileSystems);

    FileSystem* getFileSystem(const QString& name) const;
    /// Ends with handleFinishedMediaDrop().
    QSharedPointer<MediaDrop> createDrop(int collection, int slot);
    void storeMediaToDrop(const MediaEntry& entry, FileSystem* fileSystem, MediaDrop& drop,
                          QList<GuiMediaSlot>& medias, bool isLogged) const;
    bool parseSlot(const SlotPayload& payload, int collection, int slot);
    bool parseMedia(const SlotPayload& payload, int collection, int slot);
    bool refuse(const QString& why);
    bool announce(const QSharedPointer<MediaDrop>& drop);
    void letGo(const QObject* drop);

    MediaSlotDropHandler* m_owner;
    ImageSequenceCreator* m_creator;
    FileSystemProvider* m_fileSystems;
    AsyncFileSystemReader m_reader; // of all drops, which share it
    QList<QSharedPointer<MediaDrop>> m_drops;

public Q_SLOTS:
    bool handleMimeData(const QMap<QString, QVariant>& mime, int collection, int slot);
    void handleFinishedMediaDrop();
};

} // namespace vantrel
