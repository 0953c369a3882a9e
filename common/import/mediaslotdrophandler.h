#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

#include <memory>

class QMimeData;

namespace vantrel {

class FileSystemProvider;
class ImageSequenceCreator;
class MediaDrop;
class MediaSlotDropHandlerPrivate;
class SlotPayload;

/// Takes what is dropped onto a slot, from a widget or from a declarative view, and makes a MediaDrop of it,
/// which it keeps until that is saved or canceled. Main thread only; what it is given must outlive it.
class MediaSlotDropHandler : public QObject
{
    Q_OBJECT
    Q_MOC_INCLUDE("common/import/mediadrop.h")

public:
    MediaSlotDropHandler(ImageSequenceCreator* creator, FileSystemProvider* fileSystems,
                         QObject* parent = nullptr);
    ~MediaSlotDropHandler() override;

    // False, and no drop made, for what cannot be read; dropRefused() says why.
    Q_INVOKABLE bool dropMimeData(const QMimeData* mimeData, int collection, int slot);
    /// mime: "application/type" is "slot" or "media", "application/json" as SlotPayload reads it.
    Q_INVOKABLE bool dropMimeData(QMap<QString, QVariant> mime, int collection, int slot);
    /// What has been read already.
    bool drop(const SlotPayload& payload, int collection, int slot);
    /// drag: an object with the property "mimeData", a map.
    Q_INVOKABLE bool dropDrag(QVariant drag, int collection, int slot);

    /// Lets go of a drop, whatever it is at; unlike its cancel() also while it is at work.
    void giveUp(const MediaDrop* drop);

Q_SIGNALS:
    /// Whoever takes it calls its save() or cancel() once it is ready, which it may be already.
    void mediaDropCreated(vantrel::MediaDrop* drop);
    /// A sentence for the operator, plain text.
    void dropRefused(QString why);

private:
    std::unique_ptr<MediaSlotDropHandlerPrivate> d;
};

} // namespace vantrel
