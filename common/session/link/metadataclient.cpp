#include "common/session/link/metadataclient.h"

#include "common/media/net/mediadataaggregator.h"
#include "common/session/session.h"
#include "common/session/settings/sessionlogging.h"
#include "tarn/net/eventfactory.h"

#include <QUrl>
#include <nlohmann/json.hpp>

namespace vantrel {

namespace {
constexpr int keepaliveInterval = 60000; // milliseconds
constexpr int turnMs = 4;
constexpr int mostFetched = 100;            // files that came, a second
constexpr quint64 maxMessage = 1024 * 1024; // bytes; a longer one ends the channel

enum class Kind { Other, Added, Changed, Removed };

Kind kindOf(const std::string& typeName)
{
    if (typeName == "metadata-added")
        return Kind::Added;
    if (typeName == "metadata-changed")
        return Kind::Changed;
    return typeName == "metadata-removed" ? Kind::Removed : Kind::Other;
}

MediaDataAggregator* theAggregator()
{
    return Session::instance() ? Session::instance()->mediaDataAggregator() : nullptr;
}
} // namespace

MetadataClient::MetadataClient(const QString& host, quint16 port, QObject* parent)
    : QObject(parent)
    , m_webSocket(QString(), QWebSocketProtocol::Version13)
{
    m_keepaliveTimer.setInterval(keepaliveInterval);
    m_webSocket.setMaxAllowedIncomingFrameSize(maxMessage);
    m_webSocket.setMaxAllowedIncomingMessageSize(maxMessage);
    connect(&m_webSocket, &QWebSocket::connected, this, &MetadataClient::onConnected);
    connect(&m_webSocket, &QWebSocket::disconnected, this, &MetadataClient::closed);
    connect(&m_webSocket, QOverload<QAbstractSocket::SocketError>::of(&QWebSocket::error), this,
            &MetadataClient::onError);
    connect(&m_turn, &Turn::come, this, &MetadataClient::handleSome);
    connect(&m_keepaliveTimer, &QTimer::timeout, this, &MetadataClient::onKeepaliveTimer);
    QUrl url;
    url.setScheme(QStringLiteral("ws"));
    url.setHost(host);
    url.setPort(port);
    url.setPath(QStringLiteral("/api/brume/v1/events"));
    m_webSocket.open(url);
}

MetadataClient::~MetadataClient()
{
    // The socket closes in its destructor, when this object's slots are no longer there to be called.
    m_webSocket.disconnect(this);
    m_webSocket.abort(); // also in the middle of its opening
}

void MetadataClient::onConnected()
{
    connect(&m_webSocket, &QWebSocket::textMessageReceived, this, &MetadataClient::onTextMessageReceived);
    m_keepaliveTimer.start();
}

void MetadataClient::closed()
{
    m_keepaliveTimer.stop();
    onError();
}

void MetadataClient::onError()
{
    qCInfo(lcSession).noquote() << "Events channel:" << m_webSocket.errorString();
}

void MetadataClient::onKeepaliveTimer()
{
    m_webSocket.ping();
}

void MetadataClient::onTextMessageReceived(const QString& message)
{
    m_waiting.enqueue(message);
    m_turn.ask();
    if (m_waiting.size() <= mostWaiting)
        return;
    qCInfo(lcSession) << "Events channel: too many changes to follow each";
    m_waiting.clear();
    if (MediaDataAggregator* aggregator = theAggregator())
        aggregator->invalidateAllData();
}

void MetadataClient::handleSome()
{
    QElapsedTimer clock;
    clock.start();
    while (!m_waiting.isEmpty() && clock.elapsed() < turnMs) {
        try {
            handleMessage(m_waiting.dequeue());
        } catch (const std::exception& failure) {
            qCWarning(lcSession).noquote()
                << QStringLiteral("Failed to handle event: ") + QString::fromUtf8(failure.what());
        }
    }
    if (!m_waiting.isEmpty())
        m_turn.ask();
}

/// Whether what is known of a file that has come is fetched before somebody looks at it. Of many it is not.
bool MetadataClient::isFetched()
{
    if (!m_second.isValid() || m_second.hasExpired(1000)) {
        m_second.start();
        m_fetched = 0;
    }
    return ++m_fetched <= mostFetched;
}

void MetadataClient::handleMessage(const QString& message)
{
    qCDebug(lcSession) << "Event message received";
    const auto event = EventFactory::getInstance().create(nlohmann::json::parse(message.toStdString()));
    if (!event) {
        qCWarning(lcSession) << "ERROR, failed to create an event";
        return;
    }
    qCDebug(lcSession) << "Event created";
    const Kind kind = kindOf(event->getTypeName());
    if (kind == Kind::Other) {
        qCDebug(lcSession).noquote() << QStringLiteral("Ignoring event ") +
                                            QString::fromStdString(event->getTypeName());
        return;
    }
    const auto* metadata = dynamic_cast<const MetadataEvent*>(event.get());
    if (!metadata) {
        qCWarning(lcSession) << "Failed to cast to MetadataEvent";
        return;
    }
    qCDebug(lcSession) << "Handling metadata event";
    const QUrl url(QString::fromStdString(metadata->getMediaUrl()));
    MediaDataAggregator* aggregator = theAggregator();
    if (!aggregator)
        return;
    if (kind == Kind::Added && isFetched())
        aggregator->refreshData(url);
    else
        aggregator->invalidateData(url, kind == Kind::Removed);
}

} // namespace vantrel
