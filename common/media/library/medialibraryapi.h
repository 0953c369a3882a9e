#pragma once

#include "common/media/library/eventstream.h"
#include "common/media/library/librarymessage.h"
#include "common/media/library/libraryunread.h"
#include "tarn/json/json.h"
#include "tarn/json/patch.h"
#include "tarn/media/entryaddress.h"
#include "tarn/media/mediaaddress.h"
#include "tarn/media/mediacollection.h"
#include "tarn/media/playlist.h"
#include "tarn/ref.h"

#include <QByteArrayList>
#include <QFutureWatcher>
#include <QJsonDocument>
#include <QList>
#include <QObject>
#include <QPointer>

#include <optional>
#include <utility>
#include <vector>

class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;
class QTimer;
class QUrl;

namespace vantrel {

class EditQueue;
class MediaLibrary;
class Turn;
struct LibraryReading;

using CollectionAndIndex = std::pair<MediaCollection, int>;

/// Client of the server's media library. It fetches the library once, then applies the patches of the event
/// stream to it and tells by signals what each touched. Writes go to the server only, through the queue of
/// edits, and come back on the stream. The session makes one for each connection; main thread only.
class MediaLibraryApi : public QObject
{
    Q_OBJECT

public:
    MediaLibraryApi(const QString& host, QNetworkAccessManager* manager, MediaLibrary* library,
                    QObject* parent = nullptr);
    ~MediaLibraryApi() override;

    void setPort(int port) { m_port = port; }
    /// How long a server may be silent within an answer before the request has failed, in milliseconds.
    int answerTime() const { return m_answerTime; }
    void setAnswerTime(int milliseconds) { m_answerTime = milliseconds; }

    // Requests. The caller owns the reply; null when the content has no JSON form.
    QNetworkReply* getMediaLibrary();
    QNetworkReply* getCollections();
    QNetworkReply* getPlaylists();
    QNetworkReply* replaceMediaLibrary(const MediaLibrary& library);
    QNetworkReply* replacePlaylists(const QList<Playlist>& playlists);
    /// With a revision the server takes the patch only as long as its library is at that one.
    QNetworkReply* patchMediaLibrary(const Patch& patch, std::optional<qint64> revision = std::nullopt);
    QNetworkReply* openSSE();

    /// Follows the event stream until it ends; nothing starts it again.
    void listenChanges();
    void stopListening();
    /// Fetches the whole library, again each second until it comes, and replaces the local one. While a
    /// stream opens, the request waits for the server's first word on it, so that no change falls between the
    /// two.
    void requestMediaLibrary();
    /// From the request to the library in its place, or the failure.
    bool isFetching() const { return m_fetches > 0; }

    enum class Reading { Awaited, Done, Failed };
    /// What became of the last fetch.
    Reading reading() const { return m_reading; }
    /// What the operator is told of it.
    LibraryUnread unread() const;
    /// Whether the local library is the server's, but for what is on its way.
    bool isCurrent() const { return m_reading == Reading::Done && m_fetches + m_waits == 0; }
    /// The number of the library that stands here; none of a server that does not count.
    std::optional<qint64> revision() const { return m_revision; }
    static std::optional<qint64> revisionOf(QByteArray tag);

    const MediaLibrary& library() const { return *m_library; }
    Json libraryJson() const;
    /// The library with all edits that are under way.
    Ref<const MediaLibrary> expectedLibrary() const;
    EditQueue* edits() const { return m_edits; }
    /// What was read from the event stream, in pieces of any size.
    void receive(const QByteArray& bytes);

    /// What a message of the stream does: changes the library, then tells what the patch touched, collections
    /// before playlists. False, and nothing changes or is told, when the patch does not fit.
    bool applyMediaLibraryPatch(const Patch& patch);

    /// The bytes that patchMediaLibrary() sends; false when the patch has no JSON form.
    static bool patchBody(const Patch& patch, QByteArray* body);
    static bool replyToSdkJson(QNetworkReply* reply, Json* json);
    static QJsonDocument sdkJsonToQJsonDocument(Json* json);
    static bool sdkJsonToQJsonDocument(Json* json, QJsonDocument* document);

Q_SIGNALS:
    void mediaLibraryRequestFailed();
    /// The event stream has ended, or stays silent: from now on changes of others go unheard.
    void streamLost();
    /// reading() is another one.
    void readingChanged();
    void collectionsReceived(QList<vantrel::CollectionAndIndex> collections);
    void playlistsReceived(QList<vantrel::Playlist> playlists);
    void mediaLibraryReplaced();
    void mediaLibraryChanged();
    void mediaCollectionChanged(uint collection);
    void mediaCollectionRemoved(uint collection);
    void mediaCollectionAdded(uint collection);
    void playlistAdded(uint playlist);
    void playlistChanged(uint playlist);
    void playlistRemoved(uint playlist);
    void playlistEntryAdded(uint playlist, vantrel::EntryAddress entry);
    void playlistEntryChanged(uint playlist, vantrel::EntryAddress entry);
    void playlistEntryRemoved(uint playlist, vantrel::EntryAddress entry);
    void mediaAdded(vantrel::MediaAddress address);
    void mediaChanged(vantrel::MediaAddress address);
    void mediaRemoved(vantrel::MediaAddress address);
    /// Around all that one patch changes: what is worked out of many things is worked out once.
    void changesStarted();
    void changesFinished();
    /// The last edit that was under way is so no more: the library shows it, or it was refused.
    void editsSettled();

private:
    QUrl buildUrl(const QString& path, const QString& query = {}) const;
    QNetworkRequest jsonRequest(const QString& path) const;
    void fetchLibrary();
    void onLibraryReceived(QNetworkReply* reply, const QByteArrayList& pieces);
    void onLibraryRead(const LibraryReading& reading, std::optional<qint64> revision);
    void fetchEnded();
    void adoptLibrary(MediaLibrary& fetched, std::optional<qint64> revision);
    void fetchFailed(const QString& why);
    void onStreamEnded(QNetworkReply* stream);
    void loseStream();
    void setReading(Reading reading);
    void onStreamData();
    void takeMessages();
    void handleMessage(const QByteArray& data);
    void takeLargeMessage();
    void takeMessage(const LibraryMessage& message);
    bool apply(const LibraryMessage& message);
    void missMessage();
    void emitLibraryChanges(const LibraryChanges& changes);
    void emitCollectionChanges(const LibraryChanges& changes);
    void emitPlaylistChanges(const LibraryChanges& changes);

    Ref<MediaLibrary> m_library;
    QPointer<QNetworkAccessManager> m_manager;
    QString m_host;
    QString m_scheme;
    int m_port = 80;
    int m_answerTime = 10000;
    QNetworkReply* m_stream = nullptr;
    EventStream m_events;

    // What the stream brought while the library was fetched: the answer may be of before or after it.
    struct Message
    {
        Patch patch;
        std::optional<qint64> revision;
    };
    std::vector<Message> m_meanwhile;
    qsizetype m_meanwhileBytes = 0;
    int m_fetches = 0;
    int m_waits = 0;         // fetches that wait for the stream to open
    bool m_isBehind = false; // a message was passed over since the last fetch began
    bool m_isDeaf = false;   // the stream is lost
    std::optional<qint64> m_revision;
    Reading m_reading = Reading::Awaited;
    QString m_readingError; // plain text without a full stop
    QFutureWatcher<LibraryMessage> m_large;
    bool m_isLargeRead = false; // m_large reads one
    EditQueue* const m_edits;
    Turn* const m_turn;      // of the messages that have come and are not taken yet
    QTimer* const m_silence; // runs while a stream is open whose server says each second that it is there
};

} // namespace vantrel
