#include "common/media/library/medialibraryapi.h"

#include "common/media/address/medialogging.h"
#include "common/media/library/aside.h"
#include "common/media/library/editqueue.h"
#include "common/media/library/librarymessage.h"
#include "common/media/library/libraryreading.h"
#include "common/media/library/turn.h"
#include "tarn/media/medialibrary.h"

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>
#include <QUuid>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace vantrel {

namespace {

const QString restRoot = QStringLiteral("/api/brume/v1");

// A library of this many bytes is no library.
constexpr qint64 maxLibraryBytes = 256LL * 1024 * 1024;
// Between a fetch that failed and the next one, in milliseconds.
constexpr int retryTime = 1000;
// How long a fetch waits for the event stream to open, in milliseconds.
constexpr int streamOpeningTime = 1000;
// A server that speaks each second and says nothing for so long has gone, in milliseconds.
constexpr int streamSilence = 3500;

} // namespace

MediaLibraryApi::MediaLibraryApi(const QString& host, QNetworkAccessManager* manager, MediaLibrary* library,
                                 QObject* parent)
    : QObject(parent)
    , m_library(library)
    , m_manager(manager)
    , m_host(host)
    , m_scheme(QStringLiteral("http"))
    , m_edits(new EditQueue(this))
    , m_turn(new Turn(this))
    , m_silence(new QTimer(this))
{
    connect(&m_large, &QFutureWatcherBase::finished, this, [this] {
        takeLargeMessage();
        m_turn->ask(); // for those behind it
    });
    connect(m_turn, &Turn::come, this, [this] {
        takeMessages();
        onStreamData();
    });
    m_silence->setSingleShot(true);
    m_silence->setInterval(streamSilence);
    connect(m_silence, &QTimer::timeout, this, [this] {
        qCInfo(lcMedia) << "The event stream has fallen silent";
        stopListening();
        loseStream();
    });
    connect(this, &MediaLibraryApi::mediaLibraryChanged, m_edits, &EditQueue::proceed);
    connect(m_edits, &EditQueue::dropped, this, [this] {
        if (m_edits->isEmpty())
            Q_EMIT editsSettled();
    });
}

MediaLibraryApi::~MediaLibraryApi()
{
    if (m_stream) { // an abort would still tell of an end
        m_stream->disconnect(this);
        m_stream->deleteLater();
    }
    delete m_edits; // while this is still whole: it tells what becomes of the edits
}

QUrl MediaLibraryApi::buildUrl(const QString& path, const QString& query) const
{
    QUrl url;
    url.setScheme(m_scheme);
    url.setHost(m_host);
    url.setPort(m_port);
    url.setPath(restRoot + path);
    if (!query.isEmpty())
        url.setQuery(query);
    return url;
}

QNetworkRequest MediaLibraryApi::jsonRequest(const QString& path) const
{
    QNetworkRequest request(buildUrl(path));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    request.setPriority(QNetworkRequest::HighPriority); // ahead of thumbnails
    return request;
}

QNetworkReply* MediaLibraryApi::getMediaLibrary()
{
    QNetworkRequest request = jsonRequest(QStringLiteral("/medialibrary"));
    request.setTransferTimeout(m_answerTime);
    return m_manager->get(request);
}

QNetworkReply* MediaLibraryApi::getCollections()
{
    return m_manager->get(jsonRequest(QStringLiteral("/collections")));
}

QNetworkReply* MediaLibraryApi::getPlaylists()
{
    return m_manager->get(jsonRequest(QStringLiteral("/playlists")));
}

QNetworkReply* MediaLibraryApi::replaceMediaLibrary(const MediaLibrary& library)
{
    Json json = library.toJson();
    QJsonDocument document;
    if (!sdkJsonToQJsonDocument(&json, &document)) {
        qCWarning(lcMedia) << "[replaceMediaLibrary] Failed to convert SDK JSON to QT JSON";
        return nullptr;
    }
    return m_manager->post(jsonRequest(QStringLiteral("/medialibrary")),
                           document.toJson(QJsonDocument::Compact));
}

QNetworkReply* MediaLibraryApi::replacePlaylists(const QList<Playlist>& playlists)
{
    Json json = Json::array();
    for (const Playlist& playlist : playlists)
        json.append(playlist.toJson());
    QJsonDocument document;
    if (!sdkJsonToQJsonDocument(&json, &document)) {
        qCWarning(lcMedia) << "Failed to convert SDK JSON to QT JSON";
        return nullptr;
    }
    return m_manager->post(jsonRequest(QStringLiteral("/playlists")),
                           document.toJson(QJsonDocument::Compact));
}

QNetworkReply* MediaLibraryApi::patchMediaLibrary(const Patch& patch, std::optional<qint64> revision)
{
    QByteArray body;
    if (!patchBody(patch, &body)) {
        qCWarning(lcMedia) << "[patchMediaLibrary] Failed to convert SDK JSON to QT JSON";
        return nullptr;
    }
    QNetworkRequest request = jsonRequest(QStringLiteral("/medialibrary"));
    if (revision)
        request.setRawHeader("If-Match", '"' + QByteArray::number(*revision) + '"');
    // The network layer sends a request again by itself when a kept connection breaks before the answer.
    request.setRawHeader("Idempotency-Key",
                         '"' + QUuid::createUuid().toByteArray(QUuid::WithoutBraces) + '"');
    request.setTransferTimeout(m_answerTime); // the edits behind it wait for the answer
    return m_manager->sendCustomRequest(request, QByteArrayLiteral("PATCH"), body);
}

bool MediaLibraryApi::patchBody(const Patch& patch, QByteArray* body)
{
    // The text itself: read into a document and written again it holds the window for thousands of slots.
    *body = QByteArray::fromStdString(patch.toString());
    return !body->isEmpty();
}

QNetworkReply* MediaLibraryApi::openSSE()
{
    return m_manager->get(QNetworkRequest(
        buildUrl(QStringLiteral("/sse"), QStringLiteral("topic=collections&topic=playlists"))));
}

void MediaLibraryApi::listenChanges()
{
    if (m_stream && m_stream->isRunning()) {
        qCWarning(lcMedia) << "Already listening to media library changes!";
        return;
    }
    m_events = EventStream();
    m_isDeaf = false;
    QNetworkReply* stream = openSSE();
    m_stream = stream;
    // A stream that outlives this object is read by nobody: what it may buffer is bounded.
    stream->setReadBufferSize(EventStream::maxBuffered);
    connect(stream, &QNetworkReply::finished, stream, [stream] {
        qCDebug(lcMedia) << "SSE finished";
        stream->deleteLater();
    });
    connect(stream, &QNetworkReply::finished, this, [this, stream] { onStreamEnded(stream); });
    connect(stream, &QObject::destroyed, this, [this, stream] {
        qCDebug(lcMedia) << "SSE destroyed";
        if (m_stream == stream)
            m_stream = nullptr;
    });
    connect(stream, &QNetworkReply::readyRead, this, &MediaLibraryApi::onStreamData);
}

void MediaLibraryApi::stopListening()
{
    if (!m_stream)
        return;
    m_silence->stop();
    QNetworkReply* stream = m_stream;
    m_stream = nullptr;
    stream->abort();
    stream->disconnect(this);
    stream->deleteLater();
}

void MediaLibraryApi::onStreamEnded(QNetworkReply* stream)
{
    if (m_stream != stream)
        return; // it was stopped
    m_silence->stop();
    loseStream();
}

/// From here on the library here grows old: nothing is made on it any more.
void MediaLibraryApi::loseStream()
{
    m_isDeaf = true;
    if (m_isLargeRead || m_turn->isAsked()) { // what the server has said stands
        m_turn->stop();
        takeLargeMessage();
        takeMessages();
    }
    setReading(Reading::Awaited);
    m_edits->refuseAll(tr("The server does not tell of changes any more; the library is read anew."));
    Q_EMIT streamLost();
}

void MediaLibraryApi::onStreamData()
{
    if (!m_stream || !m_stream->isOpen())
        return;
    if (m_isLargeRead || m_turn->isAsked()) { // what has come is taken first
        if (m_silence->isActive())
            m_silence->start(); // it is not silent
        return;
    }
    // Much that comes at once is taken in turns, in between which the window goes on.
    constexpr qint64 inOneTurn = 256 * 1024;
    const QByteArray bytes = m_stream->read(inOneTurn);
    if (m_stream->bytesAvailable() > 0)
        QMetaObject::invokeMethod(this, &MediaLibraryApi::onStreamData, Qt::QueuedConnection);
    // Only a server that says by comments that it is there is held to it.
    if (m_silence->isActive() || bytes.startsWith(':') || bytes.contains("\n:"))
        m_silence->start();
    receive(bytes);
}

void MediaLibraryApi::receive(const QByteArray& bytes)
{
    if (!bytes.startsWith(':')) // a comment comes each second
        qCDebug(lcMedia) << "Received SSE data: " << shortened(bytes);
    const EventStream::State state = m_events.assemble(bytes);
    if (state == EventStream::State::Complete)
        takeMessages();
    if (state != EventStream::State::Overflow)
        return;
    qCWarning(lcMedia) << "Event stream sends a message without end, closing it";
    stopListening();
    loseStream();
}

/// Some of those that are whole: a server that looks through its media sends hundreds in a row.
void MediaLibraryApi::takeMessages()
{
    constexpr qint64 inOneTurn = 4; // milliseconds
    QElapsedTimer clock;
    clock.start();
    const bool isAll = m_events.parse(
        [this](const QByteArray& data) { handleMessage(data); },
        [this, &clock] { return !m_isLargeRead && (m_isDeaf || clock.elapsed() < inOneTurn); });
    if (!isAll && !m_isLargeRead)
        m_turn->ask();
}

void MediaLibraryApi::handleMessage(const QByteArray& data)
{
    if (data.isNull())
        return missMessage();
    if (data.size() <= LibraryMessage::atOnce || m_isDeaf)
        return takeMessage(LibraryMessage::read(data));
    m_isLargeRead = true; // those behind it wait
    m_large.setFuture(LibraryMessage::start(data, *m_library));
}

void MediaLibraryApi::takeLargeMessage()
{
    if (!std::exchange(m_isLargeRead, false))
        return;
    auto message = std::make_shared<const LibraryMessage>(m_large.future().takeResult());
    takeMessage(*message);
    aside::letGo(std::move(message)); // to free thousands of operations takes time
}

void MediaLibraryApi::takeMessage(const LibraryMessage& message)
{
    if (!message.isSound) {
        qCWarning(lcMedia) << "Failed to parse message: " << message.error.c_str();
        return;
    }
    const std::optional<qint64> revision = message.revision;
    if (revision && m_revision && *revision <= *m_revision)
        return; // the fetched library holds it
    if (m_fetches > 0) {
        m_meanwhile.push_back({message.patch, revision});
        m_meanwhileBytes += message.size;
    }
    const bool hasGap = revision && m_revision && *revision > *m_revision + 1;
    if (revision)
        m_revision = revision;
    // What the server sends is what it did: what does not fit, or follows on something else, shows that some
    // of it was missed.
    if ((!apply(message) || hasGap) && isCurrent())
        requestMediaLibrary();
}

/// What it said is in the library that is read after it.
void MediaLibraryApi::missMessage()
{
    if (m_fetches + m_waits > 0)
        m_isBehind = true;
    else
        requestMediaLibrary();
}

bool MediaLibraryApi::applyMediaLibraryPatch(const Patch& patch)
{
    return apply(LibraryMessage::of(patch));
}

bool MediaLibraryApi::apply(const LibraryMessage& message)
{
    const bool isAnother = message.changes.isAnotherLibrary();
    std::optional<LibraryReading::Remains> remains;
    if (isAnother || message.after)
        remains.emplace(*m_library);
    if (!message.apply(*m_library))
        return false;
    if (isAnother) {
        Q_EMIT mediaLibraryReplaced();
        Q_EMIT mediaLibraryChanged();
    } else {
        emitLibraryChanges(message.changes);
    }
    return true;
}

void MediaLibraryApi::requestMediaLibrary()
{
    const bool opening = m_stream && m_stream->isRunning() &&
                         !m_stream->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
    if (!opening) {
        fetchLibrary();
        return;
    }
    ++m_waits;
    auto* wait = new QTimer(this);
    wait->setSingleShot(true);
    connect(wait, &QTimer::timeout, this, [this, wait] {
        delete wait; // the stream may open in this very moment, and it counts once
        --m_waits;
        fetchLibrary();
    });
    wait->start(streamOpeningTime);
    const auto goOn = [wait] { wait->start(0); };
    connect(m_stream, &QNetworkReply::metaDataChanged, wait, goOn);
    connect(m_stream, &QNetworkReply::finished, wait, goOn);
    connect(m_stream, &QObject::destroyed, wait, goOn);
}

void MediaLibraryApi::fetchLibrary()
{
    QNetworkReply* reply = getMediaLibrary();
    ++m_fetches;
    connect(reply, &QNetworkReply::downloadProgress, reply, [reply](qint64 received) {
        if (received > maxLibraryBytes)
            reply->abort();
    });
    connect(reply, &QNetworkReply::downloadProgress, this, [this, reply] {
        if (m_meanwhileBytes > EventStream::maxBuffered)
            reply->abort();
    });
    // Taken as it comes, and never much in one turn: what piles up, or is put together, would hold the
    // window.
    constexpr qint64 mostInOneTurn = 512 * 1024;
    reply->setReadBufferSize(mostInOneTurn);
    const auto pieces = std::make_shared<QByteArrayList>();
    connect(reply, &QNetworkReply::readyRead, this, [reply, pieces] { pieces->append(reply->readAll()); });
    connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    connect(reply, &QNetworkReply::finished, this,
            [this, reply, pieces] { onLibraryReceived(reply, *pieces); });
}

void MediaLibraryApi::onLibraryReceived(QNetworkReply* reply, const QByteArrayList& pieces)
{
    if (reply->error() != QNetworkReply::NoError) {
        qCWarning(lcMedia) << "Failed to get media library " << reply->error();
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        const QString reason = reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
        fetchFailed(status > 0 ? tr("it answers \"%1 %2\"").arg(status).arg(reason) : reply->errorString());
        Q_EMIT mediaLibraryRequestFailed();
        return;
    }
    const std::optional<qint64> revision = revisionOf(reply->rawHeader(QByteArrayLiteral("ETag")));
    qsizetype size = 0;
    for (const QByteArray& piece : pieces)
        size += piece.size();
    if (size <= LibraryReading::atOnce)
        return onLibraryRead(LibraryReading::read(pieces.join()), revision);
    auto* watcher = new QFutureWatcher<LibraryReading>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, revision] {
        const LibraryReading reading = watcher->result();
        watcher->deleteLater();
        onLibraryRead(reading, revision);
    });
    watcher->setFuture(LibraryReading::start(pieces));
}

void MediaLibraryApi::onLibraryRead(const LibraryReading& reading, std::optional<qint64> revision)
{
    switch (reading.outcome) {
    case LibraryReading::Outcome::NoJson:
        qCWarning(lcMedia) << "Failed to convert  QT JSON to SDK JSON";
        fetchFailed(tr("the answer is no JSON"));
        break;
    case LibraryReading::Outcome::NoLibrary:
        qCWarning(lcMedia) << "Failed to parse media library" << shortened(reading.error);
        fetchFailed(tr("the answer is no library"));
        Q_EMIT mediaLibraryRequestFailed();
        break;
    case LibraryReading::Outcome::Library:
        adoptLibrary(*reading.library, revision);
        break;
    }
}

void MediaLibraryApi::adoptLibrary(MediaLibrary& fetched, std::optional<qint64> revision)
{
    for (const Message& message : m_meanwhile) {
        // Without revisions there is no telling: one that the library holds already hardly ever fits again.
        if (!revision || !message.revision || *message.revision > *revision)
            fetched.applyDiff(message.patch);
    }
    // What came meanwhile is in it now.
    m_revision = revision ? std::max(revision, m_revision) : std::nullopt;
    if (!m_isDeaf)
        setReading(Reading::Done);
    fetchEnded();
    LibraryReading::Remains remains(*m_library);
    *m_library = fetched;
    Q_EMIT mediaLibraryReplaced();
    Q_EMIT mediaLibraryChanged();
}

/// It is tried again until it comes.
void MediaLibraryApi::fetchFailed(const QString& why)
{
    constexpr qsizetype longest = 200;
    m_readingError = why.left(longest);
    QTimer::singleShot(retryTime, this, &MediaLibraryApi::requestMediaLibrary);
    setReading(Reading::Failed);
    fetchEnded();
    m_edits->refuseAll(tr("The library could not be read from the server."));
}

LibraryUnread MediaLibraryApi::unread() const
{
    switch (m_reading) {
    case Reading::Awaited:
        return {tr("Loading ..."), tr("Loading the library from the server ...")};
    case Reading::Failed:
        return {tr("Not read"),
                tr("The library could not be read from the server: %1. It is tried again each second.")
                    .arg(m_readingError)};
    case Reading::Done:
        break;
    }
    return {};
}

void MediaLibraryApi::setReading(Reading reading)
{
    if (std::exchange(m_reading, reading) != reading)
        Q_EMIT readingChanged();
}

Json MediaLibraryApi::libraryJson() const
{
    return m_library->toJson();
}

Ref<const MediaLibrary> MediaLibraryApi::expectedLibrary() const
{
    return m_edits->isEmpty() ? Ref<const MediaLibrary>(m_library) : m_edits->expected();
}

/// The number of a message of the stream, as the library's tag.
std::optional<qint64> MediaLibraryApi::revisionOf(QByteArray tag)
{
    bool isNumber = false;
    const qint64 revision = tag.replace('"', QByteArray()).toLongLong(&isNumber);
    return isNumber ? std::optional<qint64>(revision) : std::nullopt;
}

void MediaLibraryApi::fetchEnded()
{
    if (--m_fetches > 0)
        return;
    m_meanwhile.clear();
    m_meanwhileBytes = 0;
    if (std::exchange(m_isBehind, false))
        requestMediaLibrary();
}

bool MediaLibraryApi::replyToSdkJson(QNetworkReply* reply, Json* json)
{
    const QByteArray body = reply->readAll();
    return Json::parseString({body.constData(), static_cast<std::size_t>(body.size())}, *json);
}

QJsonDocument MediaLibraryApi::sdkJsonToQJsonDocument(Json* json)
{
    QJsonDocument document;
    sdkJsonToQJsonDocument(json, &document);
    return document;
}

bool MediaLibraryApi::sdkJsonToQJsonDocument(Json* json, QJsonDocument* document)
{
    const QJsonDocument read = QJsonDocument::fromJson(QByteArray::fromStdString(json->toString(false)));
    if (read.isNull()) {
        qCWarning(lcMedia) << "Failed to convert";
        return false;
    }
    *document = read;
    return true;
}

} // namespace vantrel
