#pragma once

#include <QObject>
#include <QTimer>
#include <QWebSocket>

namespace vantrel {

/// Listens on the server's events channel for changed metadata of media files and has cached data thrown
/// away. Lives for one connection of the session, and never reconnects by itself.
class MetadataClient : public QObject
{
    Q_OBJECT

public:
    /// Opens the channel at once.
    MetadataClient(const QString& host, quint16 port, QObject* parent = nullptr);
    ~MetadataClient() override;

    bool isKeepaliveRunning() const { return m_keepaliveTimer.isActive(); }

private:
    void onConnected();
    void closed();
    void onError();
    void onKeepaliveTimer();
    void onTextMessageReceived(const QString& message);
    void handleMessage(const QString& message);

    QWebSocket m_webSocket;
    QTimer m_keepaliveTimer;
};

} // namespace vantrel
