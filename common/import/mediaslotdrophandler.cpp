#include "common/import/mediaslotdrophandler.h"

#include "common/filesystem/model/filesystemprovider.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/import/mediaslotdrophandler_p.h"
#include "common/media/address/medialogging.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QMimeData>
#include <QUrl>

#include <cmath>

namespace vantrel {

namespace {

const QString typeKey = QStringLiteral("application/type");
const QString jsonKey = QStringLiteral("application/json");
constexpr qsizetype largestPayload = 16 << 20; // bytes

} // namespace

MediaSlotDropHandler::MediaSlotDropHandler(ImageSequenceCreator* creator, FileSystemProvider* provider,
                                           QObject* parent)
    : QObject(parent)
    , d(std::make_unique<MediaSlotDropHandlerPrivate>(this, creator, provider))
{
}

MediaSlotDropHandler::~MediaSlotDropHandler() = default;

bool MediaSlotDropHandler::dropMimeData(const QMimeData* mimeData, int collection, int slot)
{
    qCInfo(lcMedia) << "Dropped MIME data to collection" << collection << "and slot" << slot;
    if (!mimeData || !mimeData->hasFormat(typeKey) || !mimeData->hasFormat(jsonKey)) {
        qCWarning(lcMedia) << "Dropped MIME data didn't have correct values - Formats:"
                           << (mimeData ? mimeData->formats() : QStringList());
        return false;
    }
    return d->handleMimeData({{typeKey, mimeData->data(typeKey)}, {jsonKey, mimeData->data(jsonKey)}},
                             collection, slot);
}

bool MediaSlotDropHandler::dropMimeData(QMap<QString, QVariant> mime, int collection, int slot)
{
    qCInfo(lcMedia) << "Dropped MIME value map to collection" << collection << "and slot" << slot
                    << "- MIME:" << mime;
    return d->handleMimeData(mime, collection, slot);
}

bool MediaSlotDropHandler::dropDrag(QVariant drag, int collection, int slot)
{
    qCInfo(lcMedia) << "Dropped drag object to collection" << collection << "and slot" << slot;
    const QObject* source = drag.value<QObject*>();
    return d->handleMimeData(source ? source->property("mimeData").toMap() : QVariantMap(), collection, slot);
}

MediaDrop* MediaSlotDropHandler::dropPaths(const QList<images::RequestPath>& paths, FileSystem* fileSystem,
                                           int collection, int slot)
{
    const auto drop = d->createDrop(collection, slot);
    for (const images::RequestPath& path : paths)
        drop->requestAsynchronously(path, fileSystem);
    d->keep(drop);
    return drop.data();
}

MediaDrop* MediaSlotDropHandler::moveDrop(MediaDrop* drop, int slot)
{
    const auto moved = d->createDrop(drop->collection(), slot);
    moved->setCollectionSlots(drop->collectionSlots());
    moved->setMedias(drop->medias());
    moved->setImageResults(drop->imageResults());
    drop->cancel();
    d->keep(moved);
    return moved.data();
}

qsizetype MediaSlotDropHandler::liveDrops() const
{
    return d->m_drops.size();
}

MediaSlotDropHandlerPrivate::MediaSlotDropHandlerPrivate(MediaSlotDropHandler* owner,
                                                         ImageSequenceCreator* creator,
                                                         FileSystemProvider* provider)
    : m_owner(owner)
    , m_creator(creator)
    , m_provider(provider)
{
}

bool MediaSlotDropHandlerPrivate::handleMimeData(const QVariantMap& mime, int collection, int slot)
{
    qCInfo(lcMedia) << "Handling MIME data" << mime.keys() << "to collection" << collection << "and slot"
                    << slot;
    if (!mime.contains(typeKey) || !mime.contains(jsonKey)) {
        qCWarning(lcMedia) << "Unable to handle MIME map due missing values -" << mime.keys();
        return false;
    }
    const QByteArray json = mime.value(jsonKey).toByteArray();
    QJsonParseError fault;
    const QJsonDocument document =
        json.size() > largestPayload ? QJsonDocument() : QJsonDocument::fromJson(json, &fault);
    if (document.isEmpty()) {
        qCWarning(lcMedia) << "MIME" << jsonKey << "is empty/error";
        return false;
    }
    const QString type = mime.value(typeKey).toString();
    if (type == QLatin1String("slot"))
        return parseSlot(collection, slot, document);
    if (type == QLatin1String("media"))
        return parseMedia(collection, slot, document);
    qCWarning(lcMedia) << "Unknown MIME type:" << type << "- Ignoring drop";
    return false;
}

bool MediaSlotDropHandlerPrivate::parseSlot(int collection, int slot, const QJsonDocument& document)
{
    const QJsonValue given = document.object().value(QLatin1String("slots"));
    if (!given.isArray()) {
        qCWarning(lcMedia) << "Unable to read target slots from MIME JSON:" << document;
        return false;
    }
    QList<int> numbers;
    for (const QJsonValue& value : given.toArray()) {
        const int number = value.toInt(-1);
        if (number < 0) { // a part of them would leave the rest behind
            qCWarning(lcMedia) << "Unable to read target slots from MIME JSON:" << document;
            return false;
        }
        if (!numbers.contains(number))
            numbers.append(number);
    }
    if (numbers.isEmpty()) {
        qCWarning(lcMedia) << "Source slot array was empty in MIME data. Skipping drop(s)";
        return false;
    }
    const DropPtr drop = createDrop(collection, slot);
    drop->setCollectionSlots(numbers);
    keep(drop);
    return true;
}

bool MediaSlotDropHandlerPrivate::parseMedia(int collection, int slot, const QJsonDocument& document)
{
    if (!document.isArray()) {
        qCWarning(lcMedia) << "Expected MIME JSON to contain an array:" << document;
        return false;
    }
    const QJsonArray elements = document.array();
    qCInfo(lcMedia) << "Handling" << elements.size() << "JSON item(s) in an array";
    const DropPtr drop = createDrop(collection, slot);
    const FileSystem* const local = m_provider->getLocalFileSystem();
    QStringList localPaths;
    QList<GuiMediaSlot> medias;
    qsizetype taken = 0;
    for (const QJsonValue& element : elements) {
        const std::optional<MediaEntry> entry = parseEntry(element);
        if (!entry)
            break;
        if (entry->fileSystem == local)
            localPaths.append(entry->path);
        else
            storeMediaToDrop(*entry, *drop, medias);
        ++taken;
    }
    if (!medias.isEmpty())
        drop->setMedias(medias);
    if (!localPaths.isEmpty())
        Q_EMIT m_owner->localPathsDropped(localPaths, collection, slot);
    if (taken > localPaths.size())
        keep(drop);
    return taken == elements.size();
}

std::optional<MediaEntry> MediaSlotDropHandlerPrivate::parseEntry(const QJsonValue& value) const
{
    const QJsonObject object = value.toObject();
    const auto member = [&object](const char* key) { return object.value(QLatin1String(key)); };
    const QString path = normalizePath(member("path").toString());
    const double duration = member("duration").toDouble(-1);
    const bool isWhole = path.startsWith(u'/') && member("fileSystem").isString() &&
                         member("name").isString() && std::isfinite(duration) && duration >= 0 &&
                         member("isDirectory").isBool() && member("isPlayable").isBool();
    if (!isWhole) {
        qCWarning(lcMedia) << "Unable to read media variables from MIME JSON:" << value;
        return {};
    }
    const QString side = member("fileSystem").toString();
    FileSystem* const fileSystem = getFileSystem(side);
    if (!fileSystem) {
        qCWarning(lcMedia) << "Unable to get file system for " << side;
        return {};
    }
    return MediaEntry{path,
                      fileSystem,
                      member("name").toString(),
                      duration,
                      member("isDirectory").toBool(),
                      member("isPlayable").toBool()};
}

FileSystem* MediaSlotDropHandlerPrivate::getFileSystem(const QString& name) const
{
    return m_provider->getFileSystem(name);
}

void MediaSlotDropHandlerPrivate::storeMediaToDrop(const MediaEntry& entry, MediaDrop& drop,
                                                   QList<GuiMediaSlot>& medias) const
{
    const auto type = entry.isDirectory ? FileSystem::Directory : FileSystem::File;
    if (entry.isDirectory || !isMediaFile(entry.path)) {
        qCInfo(lcMedia) << "MediaDrop not a regular video file. Handling path" << entry.path
                        << "as potential image(s)/folder. Collection" << drop.collection() << "and slot"
                        << drop.startSlot();
        drop.requestAsynchronously({entry.path, type}, entry.fileSystem);
        return;
    }
    qCInfo(lcMedia) << "Handling path" << entry.path << "(" << entry.name
                    << ") as a single media file add to a collection" << drop.collection() << "and slot"
                    << drop.startSlot() << "- duration " << entry.duration << "- playable "
                    << (entry.isPlayable ? "true" : "false");
    if (!entry.isPlayable) {
        // Or nothing was known of it yet: it is left out only if the server says so, and then with its
        // reason.
        drop.requestAsynchronously({entry.path, type}, entry.fileSystem);
        return;
    }
    GuiMediaSlot media;
    media.setName(entry.name);
    media.setContentUrl(QUrl::fromLocalFile(entry.path));
    media.setDuration(entry.duration);
    media.setIsPlayable(true);
    medias.append(media);
}

MediaSlotDropHandlerPrivate::DropPtr MediaSlotDropHandlerPrivate::createDrop(int collection, int slot)
{
    const auto drop = QSharedPointer<MediaDrop>(new MediaDrop(&m_reader, m_creator, collection, slot),
                                                &QObject::deleteLater); // it is its signal
    connect(drop.data(), &MediaDrop::saved, this, &MediaSlotDropHandlerPrivate::handleFinishedMediaDrop);
    connect(drop.data(), &MediaDrop::canceled, this, &MediaSlotDropHandlerPrivate::handleFinishedMediaDrop);
    return drop;
}

void MediaSlotDropHandlerPrivate::keep(const DropPtr& drop)
{
    m_drops.append(drop);
    Q_EMIT m_owner->mediaDropCreated(drop.data());
}

void MediaSlotDropHandlerPrivate::handleFinishedMediaDrop()
{
    qCInfo(lcMedia) << "Drop has finished - Removing it";
    const QObject* const finished = sender();
    m_drops.removeIf([finished](const DropPtr& drop) { return drop == finished; });
}

} // namespace vantrel
