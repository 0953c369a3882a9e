#include "common/import/mediaarrivals.h"

#include "common/filesystem/model/filesystemprovider.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/transferoperation.h"
#include "common/import/mediaslotdrophandler.h"
#include "common/media/address/medialogging.h"
#include "common/media/address/showntext.h"
#include "common/notification/notificationmanagerimpl.h"

#include <QTimer>

#include <algorithm>

namespace vantrel {

using namespace std::chrono_literals;

namespace {

void tell(const QString& text)
{
    NotificationManagerImpl::instance()->createNotification(Notification::WarningMessage,
                                                            MediaArrivals::tr("Not added"), text);
}

QSharedPointer<TransferOperation> transferOf(const OperationPtr& operation)
{
    return qSharedPointerDynamicCast<TransferOperation>(operation);
}

} // namespace

MediaArrivals::MediaArrivals(FileSystemProvider* provider, FileSystemOperations* operations,
                             MediaSlotDropHandler* handler, QObject* parent)
    : QObject(parent)
    , m_provider(provider)
    , m_operations(operations)
    , m_handler(handler)
{
    connect(handler, &MediaSlotDropHandler::localPathsDropped, this, &MediaArrivals::add);
}

MediaArrivals::~MediaArrivals() = default;

void MediaArrivals::add(const QStringList& paths, int collection, int slot)
{
    if (!m_provider->getFileSystem(QStringLiteral("server")))
        return tell(tr("There is no server to which the files could go. Connect to one first."));
    Batch batch{++m_lastId, collection, slot, {}};
    QStringList others;
    for (const QString& path : paths) {
        if (!start(batch, path))
            others.append(shownText(getNameInPath(path)).toHtmlEscaped());
    }
    if (others.size() == 1)
        tell(tr("%1 is neither media nor a folder.").arg(others.constFirst()));
    else if (!others.isEmpty())
        tell(tr("%1 and %2 more are neither media nor folders.")
                 .arg(others.constFirst())
                 .arg(others.size() - 1));
    if (batch.items.empty())
        return;
    m_batches.push_back(std::move(batch));
    Q_EMIT changed();
}

bool MediaArrivals::start(Batch& batch, const QString& path)
{
    FileSystem* const local = m_provider->getLocalFileSystem();
    FileSystem* const server = m_provider->getFileSystem(QStringLiteral("server"));
    const bool isDirectory = local->getType(path) == FileSystem::Directory;
    if (!isDirectory && !isMediaFile(path) && !isImageFile(path))
        return false;
    const OperationPtr operation = m_operations->copy(local, path, server, QStringLiteral("/"));
    const auto transfer = transferOf(operation);
    if (!transfer)
        return false;
    // Of two files of one name each is what its slot shows.
    transfer->setConflictPolicy(ConflictPolicy::KeepBoth);
    connect(operation.data(), &BaseOperation::progressChanged, this, &MediaArrivals::tellLater);
    connect(
        operation.data(), &BaseOperation::operationStopped, this, [this, id = batch.id] { onEnd(id); },
        Qt::QueuedConnection); // whoever ends it is to be done first
    batch.items.push_back({operation, shownText(getNameInPath(path)), isDirectory});
    return true;
}

void MediaArrivals::onEnd(int batch)
{
    const auto found = std::ranges::find(m_batches, batch, &Batch::id);
    if (found == m_batches.end())
        return;
    Q_EMIT changed();
    if (!std::ranges::all_of(found->items, [](const Item& item) { return item.operation->hasFinished(); }))
        return;
    const Batch done = std::move(*found);
    m_batches.erase(found);
    Q_EMIT changed();
    drop(done);
}

/// The queue has told of what failed.
void MediaArrivals::drop(const Batch& batch)
{
    QList<images::RequestPath> paths;
    for (const Item& item : batch.items) {
        const auto transfer = transferOf(item.operation);
        if (transfer->state() == RunnableOperation::Passed)
            paths.append(
                {transfer->arrivedAt(), item.isDirectory ? FileSystem::Directory : FileSystem::File});
    }
    qCInfo(lcMedia) << paths.size() << "of" << batch.items.size() << "dropped file(s) have arrived";
    FileSystem* const server = m_provider->getFileSystem(QStringLiteral("server"));
    if (!paths.isEmpty() && server)
        m_handler->dropPaths(paths, server, batch.collection, batch.slot);
}

QList<MediaArrivals::Arrival> MediaArrivals::arrivals() const
{
    QList<Arrival> all;
    for (const Batch& batch : m_batches) {
        for (const Item& item : batch.items)
            if (!item.operation->hasFinished())
                all.append({item.name, batch.collection, item.operation->progress()});
    }
    return all;
}

void MediaArrivals::tellLater()
{
    if (std::exchange(m_isTelling, true))
        return;
    QTimer::singleShot(100ms, this, [this] {
        m_isTelling = false;
        Q_EMIT changed();
    });
}

} // namespace vantrel
