#include "common/import/mediaarrivals.h"

#include "common/filesystem/model/filesystem.h"
#include "common/filesystem/model/filesystemprovider.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/runnableoperation.h"
#include "common/filesystem/schedule/filesystemoperations.h"
#include "common/media/address/medialogging.h"
#include "common/media/address/showntext.h"

#include <QElapsedTimer>
#include <QSet>

#include <algorithm>
#include <chrono>
#include <memory>

namespace vantrel {

using namespace std::chrono_literals;

namespace {

const QString localName = QStringLiteral("local");
const QString serverName = QStringLiteral("server");

QString arrivingText(double share)
{
    return MediaArrivals::tr("arriving %1 %").arg(static_cast<int>(std::clamp(share, 0.0, 1.0) * 100));
}

/// Whether all that is copied is there, and not only that the operation has ended.
bool hasPassed(const BaseOperation& operation)
{
    const auto* runnable = dynamic_cast<const RunnableOperation*>(&operation);
    return runnable && runnable->state() == RunnableOperation::Passed;
}

MediaArrivals::Plan faulty(const QString& fault)
{
    MediaArrivals::Plan plan;
    plan.fault = fault;
    return plan;
}

bool isOfThisComputer(const MediaEntry& entry)
{
    return entry.fileSystem == localName;
}

} // namespace

struct MediaArrivals::Question
{
    QList<MediaEntry> entries;
    std::function<void(const Plan&)> next; // empty once it is answered or given up
    FileSystem* server = nullptr;
    QTimer patience;
};

MediaArrivals::MediaArrivals(FileSystemProvider* fileSystems, FileSystemOperations* operations,
                             QObject* parent)
    : QObject(parent)
    , m_fileSystems(fileSystems)
    , m_operations(operations)
{
    connect(&m_turn, &Turn::come, this, &MediaArrivals::sendSome);
    m_pace.setSingleShot(true);
    m_pace.setInterval(100ms);
    connect(&m_pace, &QTimer::timeout, this, &MediaArrivals::changed);
    connect(&m_pending, &PendingDrops::changed, this, &MediaArrivals::changed);
}

bool MediaArrivals::isLocal(const QList<MediaEntry>& entries)
{
    return !entries.isEmpty() && std::ranges::all_of(entries, isOfThisComputer);
}

bool MediaArrivals::isMixed(const QList<MediaEntry>& entries)
{
    return !isLocal(entries) && std::ranges::any_of(entries, isOfThisComputer);
}

QList<MediaEntry> MediaArrivals::entriesOf(const QList<QUrl>& urls)
{
    QList<MediaEntry> entries;
    for (const QUrl& url : urls) {
        const QString path = url.isLocalFile() ? normalizePath(url.toLocalFile()) : QString();
        if (!path.startsWith(u'/') || path == QStringLiteral("/"))
            return {};
        MediaEntry entry;
        entry.path = path;
        entry.fileSystem = localName;
        entry.name = getNameInPath(path);
        entry.isDirectory = !isShownFile(path); // until somebody looks
        entry.isKnown = false;
        entries.append(entry);
    }
    return entries;
}

void MediaArrivals::plan(const QList<MediaEntry>& entries, const QString& text,
                         const std::function<void(const Plan&)>& next)
{
    FileSystem* const local = m_fileSystems ? m_fileSystems->getFileSystem(localName) : nullptr;
    FileSystem* const server = m_fileSystems ? m_fileSystems->getFileSystem(serverName) : nullptr;
    if (!local || !server || !m_operations || entries.isEmpty())
        return next(faulty(tr("The server takes no files. Copy them to it by hand and drop them again.")));
    const auto question = std::make_shared<Question>();
    question->entries = entries;
    question->next = next;
    const auto giveUp = [this, asked = std::weak_ptr(question)] {
        if (const auto kept = asked.lock())
            end(kept, faulty(tr("It was given up before anything was stored or sent.")));
    };
    m_pending.add(
        &question->patience, [text] { return text; }, giveUp);
    local->whenReachable(entries.first().path, this, [this, question](bool isReachable) {
        if (isReachable)
            lookAtServer(question);
        else
            end(question, faulty(tr("The disk that the files are on does not answer.")));
    });
}

/// A name that is taken there is met before anything is stored: a slot must not play what only has the name.
void MediaArrivals::lookAtServer(const std::shared_ptr<Question>& question)
{
    if (!question->next)
        return; // given up
    FileSystem* const server = m_fileSystems->getFileSystem(serverName);
    if (!server)
        return end(question, faulty(tr("The connection to the server was lost meanwhile. Drop it again once "
                                       "the server is back.")));
    question->server = server;
    const auto ask = [this, question, server] {
        QList<FileSystemFile> files;
        if (!server->getFiles(server->defaultRootPath(), files))
            return false;
        end(question, answer(*question));
        return true;
    };
    if (ask())
        return;
    connect(server, &FileSystem::directoryChanged, &question->patience, ask);
    question->patience.setSingleShot(true);
    question->patience.setInterval(10s);
    connect(&question->patience, &QTimer::timeout, this, [this, question] {
        end(question, faulty(tr("The server does not tell which files it holds.")));
    });
    question->patience.start();
}

/// The connections hold the question, and go with its answer.
void MediaArrivals::end(std::shared_ptr<Question> question, const Plan& plan)
{
    const auto next = std::exchange(question->next, nullptr);
    if (!next)
        return; // given up
    m_pending.remove(&question->patience);
    if (question->server)
        question->server->disconnect(&question->patience);
    question->patience.disconnect();
    question->patience.stop();
    next(plan);
}

QString MediaArrivals::targetOf(const FileSystem& server, const QString& localPath, bool isDirectory)
{
    return createJoinedPath(server.defaultRootPath(), getNameInPath(localPath), isDirectory);
}

MediaArrivals::Plan MediaArrivals::answer(const Question& question) const
{
    Plan plan;
    plan.server = question.server;
    QSet<QString> names;
    for (const MediaEntry& entry : question.entries) {
        const QString name = getNameInPath(entry.path);
        if (names.contains(name)) {
            plan.faults.append(
                tr("\"%1\" is left out: another one of its name comes with it.").arg(shownText(name)));
            continue;
        }
        names.insert(name);
        add(plan, entry);
    }
    return plan;
}

void MediaArrivals::add(Plan& plan, const MediaEntry& entry) const
{
    FileSystem* const local = m_fileSystems->getFileSystem(localName);
    const auto leaveOut = [&plan, &entry](const QString& why) {
        plan.faults.append(
            tr("\"%1\" is left out: %2").arg(shownText(getNameInPath(entry.path)), shownText(why)));
    };
    const FileSystem::ItemType type = local->getType(entry.path);
    const bool isDirectory = type == FileSystem::Directory;
    if (type == FileSystem::Unknown)
        return leaveOut(tr("it is not there any more."));
    if (!isDirectory && !isShownFile(entry.path))
        return leaveOut(tr("it is neither a picture nor video nor sound."));
    FileSystem& server = *plan.server;
    const QString target = targetOf(server, entry.path, isDirectory);
    if (server.getType(targetOf(server, entry.path, false)) != FileSystem::Unknown || // of whatever kind
        m_progress.contains(QUrl::fromLocalFile(target)))
        return leaveOut(tr("the server holds something of this name. Drop that one, or give this one another "
                           "name."));
    if (isDirectory) {
        plan.directories.append(entry.path);
        return;
    }
    MediaEntry arriving = entry;
    arriving.path = target;
    arriving.fileSystem = serverName;
    arriving.name = getNameInPath(target);
    arriving.isDirectory = false;
    arriving.isKnown = true;
    arriving.isPlayable = true; // or nobody knows: the server says so once it has it
    plan.files.append(arriving);
    plan.uploads.append(entry.path);
}

bool MediaArrivals::isThere(const QString& localPath, FileSystem::ItemType type) const
{
    return m_fileSystems && m_fileSystems->getFileSystem(localName)->getType(localPath) == type;
}

OperationPtr MediaArrivals::send(const QString& localPath, FileSystem::ItemType type)
{
    FileSystem* const server = m_fileSystems->getFileSystem(serverName);
    return server && isThere(localPath, type)
               ? m_operations->copy(m_fileSystems->getFileSystem(localName), localPath, server,
                                    server->defaultRootPath())
               : nullptr;
}

void MediaArrivals::bringFiles(const QList<Upload>& uploads, QObject* context,
                               const std::function<void(const QStringList&)>& sent)
{
    FileSystem* const server = m_fileSystems ? m_fileSystems->getFileSystem(serverName) : nullptr;
    for (const Upload& upload : uploads) {
        if (server)
            noteProgress(QUrl::fromLocalFile(targetOf(*server, upload.localPath, false)), upload.media, 0);
    }
    m_batches.push_back({server, uploads, context, sent});
    m_turn.ask(); // this one has had the slots to make
}

/// An operation, and what the log says of it, takes a while: thousands would hold the window.
void MediaArrivals::sendSome()
{
    constexpr qint64 sliceTime = 4; // milliseconds
    QElapsedTimer clock;
    clock.start();
    while (!m_batches.empty()) {
        Batch& batch = m_batches.front();
        for (; batch.next < batch.uploads.size(); ++batch.next) {
            if (clock.elapsed() >= sliceTime)
                return m_turn.ask();
            const QString fault = bringFile(batch.uploads[batch.next], batch.server);
            if (!fault.isEmpty())
                batch.faults.append(fault);
        }
        const Batch done = std::move(batch);
        m_batches.pop_front();
        if (done.context)
            done.sent(done.faults);
    }
}

/// Why it was not sent; empty where it was.
QString MediaArrivals::bringFile(const Upload& upload, FileSystem* server)
{
    const QString name = shownText(getNameInPath(upload.localPath));
    if (!server)
        return tr("\"%1\" was not sent: the connection to the server was lost.").arg(name);
    const QUrl url = QUrl::fromLocalFile(targetOf(*server, upload.localPath, false));
    const QUrl media = upload.media;
    const FileSystem* const present = m_fileSystems->getFileSystem(serverName);
    const bool isThere = this->isThere(upload.localPath, FileSystem::File);
    const bool isMeant = !present || present == server;
    const OperationPtr operation =
        isThere && isMeant ? m_operations->copy(m_fileSystems->getFileSystem(localName), upload.localPath,
                                                server, server->defaultRootPath())
                           : nullptr;
    if (!operation) {
        noteEnd(url, media);
        Q_EMIT settled(url, false);
        return (isMeant ? tr("\"%1\" was not sent: it is not there any more.")
                        : tr("\"%1\" was not sent: the application has turned to another server."))
            .arg(name);
    }
    connect(operation.get(), &BaseOperation::progressChanged, this,
            [this, url, media](double, double to) { noteProgress(url, media, to); });
    // Whole or not, from now on the server says what there is.
    connect(operation.get(), &BaseOperation::operationStopped, this,
            [this, url, media, operation = operation.get()] {
                noteEnd(url, media);
                if (hasPassed(*operation))
                    Q_EMIT settled(url, false);
                else
                    lookForAnother(url);
            });
    return {};
}

void MediaArrivals::noteProgress(const QUrl& file, const QUrl& media, double share)
{
    const bool isNew = !m_progress.contains(file);
    double& present = m_progress[file];
    if (media != file) {
        Whole& whole = m_wholes[media];
        whole.pictures += isNew;
        whole.awaited += isNew;
        whole.arrived += share - present;
    }
    present = share;
    noteChange();
}

/// What has not arrived is none of what is awaited either.
void MediaArrivals::noteEnd(const QUrl& file, const QUrl& media)
{
    const auto present = m_progress.constFind(file);
    if (present == m_progress.cend())
        return;
    if (const auto whole = m_wholes.find(media); whole != m_wholes.end()) {
        whole->arrived += 1 - *present;
        if (--whole->awaited == 0)
            m_wholes.erase(whole);
    }
    m_progress.erase(present);
    noteChange();
}

double MediaArrivals::progressOf(const QUrl& media) const
{
    if (const auto whole = m_wholes.constFind(media); whole != m_wholes.cend())
        return whole->arrived / static_cast<double>(whole->pictures);
    return m_progress.value(media, -1);
}

/// The name was free when the plan was made. What the server lists now may be a little old.
void MediaArrivals::lookForAnother(const QUrl& media)
{
    FileSystem* const server = m_fileSystems->getFileSystem(serverName);
    if (!server)
        return;
    auto* watch = new QTimer(this);
    const auto look = [this, server, media, watch] {
        const bool isThere = server->getType(media.toLocalFile()) != FileSystem::Unknown;
        if (!isThere && watch->isActive() && !m_progress.contains(media))
            return;
        server->disconnect(watch);
        watch->deleteLater();
        Q_EMIT settled(media, isThere && !m_progress.contains(media));
    };
    watch->setSingleShot(true);
    connect(watch, &QTimer::timeout, watch, look);
    connect(server, &FileSystem::directoryChanged, watch, look);
    watch->start(3s);
    QList<FileSystemFile> files;
    server->getFiles(server->defaultRootPath(), files); // asks for it, where it is not known
    look();
}

void MediaArrivals::bringDirectory(const QString& localPath,
                                   const std::function<void(const QString&, const QString&)>& ended)
{
    const QString name = shownText(getNameInPath(localPath));
    const OperationPtr operation = send(localPath, FileSystem::Directory);
    if (!operation)
        return ended({}, tr("\"%1\" is left out: it is not there any more.").arg(name));
    const QString target = targetOf(*m_fileSystems->getFileSystem(serverName), localPath, true);
    m_pending.add(
        operation.get(),
        [operation = operation.get(), name] {
            return tr("\"%1\": %2").arg(name, arrivingText(operation->progress()));
        },
        [operation = operation.get()] {
            if (auto* runnable = qobject_cast<RunnableOperation*>(operation))
                runnable->abort();
        });
    connect(operation.get(), &BaseOperation::progressChanged, this, &MediaArrivals::noteChange);
    const auto end = [this, operation = operation.get(), target, name, ended] {
        m_pending.remove(operation);
        if (hasPassed(*operation))
            return ended(target, {});
        FileSystem* const server = m_fileSystems->getFileSystem(serverName);
        const bool isBegun = server && server->getType(target) != FileSystem::Unknown;
        ended({}, isBegun
                      ? tr("Not all of \"%1\" has arrived, so no slot was made of it. Retry it in FILES and "
                           "drop it from the server's side, or remove it there and drop it again.")
                            .arg(name)
                      : tr("\"%1\" has not arrived, so no slot was made of it.").arg(name));
    };
    connect(operation.get(), &BaseOperation::operationStopped, this, end, Qt::SingleShotConnection);
}

QString MediaArrivals::textOf(const QUrl& media) const
{
    const double share = progressOf(media);
    return share < 0 ? QString() : arrivingText(share);
}

void MediaArrivals::noteChange()
{
    if (!m_pace.isActive())
        m_pace.start();
}

} // namespace vantrel
