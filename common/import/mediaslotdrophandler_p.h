#pragma once

#include "common/filesystem/operations/asyncfilesystemreader.h"
#include "common/import/mediadrop.h"
#include "common/import/mediaslotdrophandler.h"

#include <QJsonDocument>

#include <optional>

namespace vantrel {

/// One element of a "media" payload.
struct MediaEntry
{
    QString path;
    FileSystem* fileSystem = nullptr;
    QString name;
    double duration = 0; // seconds
    bool isDirectory = false;
    bool isPlayable = false;
};

class MediaSlotDropHandlerPrivate : public QObject
{
    Q_OBJECT

public:
    using DropPtr = QSharedPointer<MediaDrop>;

    MediaSlotDropHandlerPrivate(MediaSlotDropHandler* owner, ImageSequenceCreator* creator,
                                FileSystemProvider* provider);

    bool handleMimeData(const QVariantMap& mime, int collection, int slot);
    bool parseSlot(int collection, int slot, const QJsonDocument& document);
    bool parseMedia(int collection, int slot, const QJsonDocument& document);
    std::optional<MediaEntry> parseEntry(const QJsonValue& value) const;
    FileSystem* getFileSystem(const QString& name) const;
    void storeMediaToDrop(const MediaEntry& entry, MediaDrop& drop, QList<GuiMediaSlot>& medias) const;
    DropPtr createDrop(int collection, int slot);
    void keep(const DropPtr& drop);

    MediaSlotDropHandler* m_owner;
    ImageSequenceCreator* m_creator;
    FileSystemProvider* m_provider;
    AsyncFileSystemReader m_reader;
    QList<DropPtr> m_drops;

public Q_SLOTS:
    void handleFinishedMediaDrop();
};

} // namespace vantrel
