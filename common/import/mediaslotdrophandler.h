#pragma once

#include "common/import/asyncrequest.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QSharedPointer>
#include <QStringList>
#include <QVariant>

#include <memory>

class QMimeData;

namespace vantrel {

class FileSystemProvider;
class ImageSequenceCreator;
class MediaDrop;
class MediaSlotDropHandlerPrivate;

/// Turns what is dropped on a slot into a MediaDrop, and keeps it until it is saved or canceled. Payloads may
/// come from anywhere and are believed in nothing. Main thread only; what it is given must outlive it.
class MediaSlotDropHandler : public QObject
{
    Q_OBJECT

public:
    MediaSlotDropHandler(ImageSequenceCreator* creator, FileSystemProvider* provider,
                         QObject* parent = nullptr);
    ~MediaSlotDropHandler() override;

    /// "application/type" is "slot" or "media"; "application/json" for slots an object with the numbers of
    /// the collection's "slots", for media an array of objects with "path", "fileSystem" ("server" or
    /// "local"), "name", "duration" (seconds), "isDirectory" and "isPlayable". False for what is none of
    /// these.
    Q_INVOKABLE bool dropMimeData(const QMimeData* mimeData, int collection, int slot);
    Q_INVOKABLE bool dropMimeData(QMap<QString, QVariant> mime, int collection, int slot);
    /// drag: an object with the property "mimeData", a map.
    Q_INVOKABLE bool dropDrag(QVariant drag, int collection, int slot);
    /// Files and directories of which nothing is known yet.
    MediaDrop* dropPaths(const QList<images::RequestPath>& paths, FileSystem* fileSystem, int collection,
                         int slot);
    /// The same drop from another slot on; the one that is given is over.
    MediaDrop* moveDrop(MediaDrop* drop, int slot);
    /// Those that are neither saved nor canceled.
    qsizetype liveDrops() const;

Q_SIGNALS:
    void mediaDropCreated(vantrel::MediaDrop* drop);
    /// Files of this computer, which the server does not have yet.
    void localPathsDropped(QStringList paths, int collection, int slot);

private:
    friend class MediaSlotDropHandlerPrivate;
    std::unique_ptr<MediaSlotDropHandlerPrivate> d;
};

} // namespace vantrel
