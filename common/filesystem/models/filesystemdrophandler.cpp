#include "common/filesystem/models/filesystemdrophandler.h"

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/filesystemprovider.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/models/conflictdesk.h"
#include "common/filesystem/models/filesystemdrophandler_p.h"
#include "common/filesystem/schedule/filesystemoperations.h"
#include "common/media/address/showntext.h"
#include "common/notification/notificationmanagerimpl.h"

#include <QJsonObject>
#include <QStringList>
#include <QUrl>

namespace vantrel {

namespace {

const QString typeKey = QStringLiteral("application/type");
const QString jsonKey = QStringLiteral("application/json");

using Way = FileSystemDropHandlerPrivate::Way;

/// A reason goes to the log, and the check has failed.
bool refused(const char* reason, const QString& about)
{
    qCInfo(lcFileSystem) << reason << about;
    return false;
}

void tellLeftOut(const QStringList& names)
{
    const QString first = shownText(names.constFirst()).toHtmlEscaped();
    const QString what =
        names.size() == 1
            ? FileSystemDropHandler::tr("%1 is no media file").arg(first)
            : FileSystemDropHandler::tr("%1 and %2 more are no media files").arg(first).arg(names.size() - 1);
    NotificationManagerImpl::instance()->createNotification(
        Notification::WarningMessage, FileSystemDropHandler::tr("Not copied"),
        FileSystemDropHandler::tr("%1. Only media and folders are copied.").arg(what));
}

} // namespace

FileSystemDropHandler::FileSystemDropHandler(FileSystemProvider* provider, FileSystemOperations* operations,
                                             ConflictDesk* desk, QObject* parent)
    : QObject(parent)
    , d(std::make_unique<FileSystemDropHandlerPrivate>(provider, operations, desk))
{
}

FileSystemDropHandler::~FileSystemDropHandler() = default;

bool FileSystemDropHandler::dropDrag(QVariant drag, QVariant targetFileSystem, QString targetPath)
{
    const QObject* source = drag.value<QObject*>();
    const QVariant mime = source ? source->property("mimeData") : QVariant();
    return mime.canConvert<QVariantMap>() && dropMimeData(mime.toMap(), targetFileSystem, targetPath);
}

bool FileSystemDropHandler::dropMimeData(QMap<QString, QVariant> mime, QVariant targetFileSystem,
                                         QString targetPath)
{
    return d->drop(mime, targetFileSystem, targetPath, Way::ByDrag);
}

bool FileSystemDropHandler::moveMimeData(const QVariantMap& mime, const QVariant& targetFileSystem,
                                         const QString& targetPath)
{
    return d->drop(mime, targetFileSystem, targetPath, Way::Move);
}

bool FileSystemDropHandler::copyMimeData(const QVariantMap& mime, const QVariant& targetFileSystem,
                                         const QString& targetPath)
{
    return d->drop(mime, targetFileSystem, targetPath, Way::Copy);
}

bool FileSystemDropHandler::dropUrls(const QList<QUrl>& urls, const QVariant& targetFileSystem,
                                     const QString& targetPath)
{
    FileSystem* local = d->m_provider->getLocalFileSystem();
    FileSystem* target = d->targetOf(targetFileSystem);
    FileSystemDropHandlerPrivate::Entries entries;
    QStringList others;
    for (const QUrl& url : urls) {
        if (!url.isLocalFile() || !local || !target)
            return false;
        const QString path = url.toLocalFile();
        const DropEntry entry{local, d->filterPath(path, local), target, d->filterPath(targetPath, target),
                              local->getType(path)};
        if (!d->isValid(entry)) {
            qCInfo(lcFileSystem) << "Invalid drop entry:" << entry;
            qCInfo(lcFileSystem) << "Skipping all drop entries";
            return false;
        }
        // It would come to lie where no view shows it, and nobody could take it away again.
        if (entry.type == FileSystem::File && !isShownFile(path))
            others.append(getNameInPath(path));
        else
            entries.append(entry);
    }
    if (!others.isEmpty())
        tellLeftOut(others);
    // What comes from elsewhere is copied, also to a folder of this computer.
    d->handleEntries(entries, Way::Copy);
    return !entries.isEmpty();
}

FileSystemDropHandlerPrivate::FileSystemDropHandlerPrivate(FileSystemProvider* provider,
                                                           FileSystemOperations* operations,
                                                           ConflictDesk* desk)
    : m_provider(provider)
    , m_operations(operations)
    , m_desk(desk)
{
}

bool FileSystemDropHandlerPrivate::drop(const QVariantMap& mime, const QVariant& target,
                                        const QString& targetPath, Way way)
{
    qCInfo(lcFileSystem) << "Dropped file system MIME value map" << mime;
    const std::optional<Entries> entries = parseMimeData(mime, targetOf(target), targetPath);
    if (!entries) {
        qCInfo(lcFileSystem) << "Failed to process file system MIME data:" << mime;
        return false;
    }
    handleEntries(*entries, way);
    return true;
}

FileSystem* FileSystemDropHandlerPrivate::getFileSystem(const QString& name) const
{
    return m_provider->getFileSystem(name);
}

FileSystem* FileSystemDropHandlerPrivate::targetOf(const QVariant& target) const
{
    if (auto* fileSystem = target.value<FileSystem*>())
        return fileSystem;
    return getFileSystem(target.toString());
}

std::optional<FileSystemDropHandlerPrivate::Entries>
FileSystemDropHandlerPrivate::parseMimeData(const QVariantMap& mime, FileSystem* target,
                                            const QString& targetPath) const
{
    if (!mime.contains(typeKey) || !mime.contains(jsonKey)) {
        qCInfo(lcFileSystem) << "Unable to handle MIME map due missing values";
        return {};
    }
    const QString type = mime.value(typeKey).toString();
    if (type != QLatin1String("media") && type != QLatin1String("directory")) {
        qCInfo(lcFileSystem) << "Unknown MIME type:" << type << "- Ignoring drop";
        return {};
    }
    const QString text = mime.value(jsonKey).toString();
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (!document.isArray() || document.array().isEmpty()) {
        if (document.isEmpty() || document.isArray())
            qCInfo(lcFileSystem) << "MIME" << text << "is empty/error";
        qCInfo(lcFileSystem) << "Unable to read entry array from MIME JSON:" << text;
        return {};
    }
    if (!target) {
        qCInfo(lcFileSystem) << "Failed to drag MIME" << text
                             << "to invalid file system target. Path:" << targetPath;
        return {};
    }
    Entries entries;
    const QJsonArray elements = document.array();
    for (const QJsonValue& element : elements) {
        const std::optional<DropEntry> entry = parseEntry(element, document, target, targetPath);
        if (!entry || !isValid(*entry)) {
            if (entry)
                qCInfo(lcFileSystem) << "Invalid drop entry:" << *entry;
            qCInfo(lcFileSystem) << "Skipping all drop entries";
            return {};
        }
        entries.append(*entry);
    }
    return entries;
}

std::optional<DropEntry> FileSystemDropHandlerPrivate::parseEntry(const QJsonValue& element,
                                                                  const QJsonDocument& document,
                                                                  FileSystem* target,
                                                                  const QString& targetPath) const
{
    const QJsonObject object = element.toObject();
    const bool isWhole = object.value(QLatin1String("fileSystem")).isString() &&
                         object.value(QLatin1String("name")).isString() &&
                         object.value(QLatin1String("isDirectory")).isBool() &&
                         object.value(QLatin1String("path")).isString();
    if (!isWhole) {
        qCInfo(lcFileSystem) << "Unexpected JSON object in entry array:" << element << "in" << document;
        return {};
    }
    const QString path = object.value(QLatin1String("path")).toString();
    FileSystem* source = getFileSystem(object.value(QLatin1String("fileSystem")).toString());
    if (!source) {
        qCInfo(lcFileSystem) << "Failed to drag MIME" << document.toJson(QJsonDocument::Compact)
                             << "to invalid file system source. Path:" << path;
        return {};
    }
    const bool isDirectory = object.value(QLatin1String("isDirectory")).toBool();
    return DropEntry{source, filterPath(path, source), target, filterPath(targetPath, target),
                     isDirectory ? FileSystem::Directory : FileSystem::File};
}

QString FileSystemDropHandlerPrivate::filterPath(const QString& path, FileSystem*) const
{
    return path.isEmpty() ? path : normalizePath(path);
}

bool FileSystemDropHandlerPrivate::isValid(const DropEntry& entry) const
{
    if (!entry.sourceFileSystem)
        return refused("Invalid source file system", entry.sourcePath);
    if (!entry.targetFileSystem)
        return refused("Invalid target file system", entry.targetPath);
    if (entry.type != FileSystem::File && entry.type != FileSystem::Directory)
        return refused("Invalid source path type:", entry.sourcePath);
    if (!entry.sourcePath.startsWith(u'/'))
        return refused("Invalid source directory path:", entry.sourcePath);
    if (entry.sourceFileSystem->getType(entry.sourcePath) != entry.type)
        return refused("Mismatching entry source type for", entry.sourcePath);
    if (!entry.targetFileSystem->isValidDirectoryPath(entry.targetPath))
        return refused("Invalid target directory path:", entry.targetPath);
    if (entry.targetFileSystem->getType(entry.targetPath) == FileSystem::File)
        return refused("Invalid target path type:", entry.targetPath);
    return true;
}

void FileSystemDropHandlerPrivate::handleEntries(const Entries& entries, Way way)
{
    qCInfo(lcFileSystem) << "About to handle" << entries.size() << "drop entries...";
    for (const DropEntry& entry : entries) {
        qCInfo(lcFileSystem) << "Handling entry" << entry;
        const bool isSameSide = entry.sourceFileSystem == entry.targetFileSystem;
        if (isSameSide && isSamePath(entry.sourcePath, entry.targetPath)) {
            qCInfo(lcFileSystem) << "Dragged to the same path. Skipping it - " << entry.sourcePath;
            continue;
        }
        if (isSameSide && isSamePath(getParentPath(entry.sourcePath), entry.targetPath)) {
            qCInfo(lcFileSystem) << "Dragged to the same directory path. Skipping it - " << entry.sourcePath;
            continue;
        }
        const bool moves = way == Way::Move || (way == Way::ByDrag && isSameSide);
        const OperationPtr operation = moves ? m_operations->move(entry.sourceFileSystem, entry.sourcePath,
                                                                  entry.targetFileSystem, entry.targetPath)
                                             : m_operations->copy(entry.sourceFileSystem, entry.sourcePath,
                                                                  entry.targetFileSystem, entry.targetPath);
        if (m_desk && operation)
            m_desk->watch(operation);
    }
}

} // namespace vantrel
