#pragma once

#include "common/media/library/turn.h"

#include <QElapsedTimer>
#include <QObject>
#include <QQueue>
#include <QTimer>
#include <QWebSocket>

namespace vantrel {

/// Listens on the server's events channel for changed metadata of media files and has cached data thrown
/// away, in turns of a few milliseconds: a folder of any size may have come at once. Of thousands that wait
/// none is followed, and all that is cached thrown away. Lives for one connection of the session, and never
/// reconnects by itself.
class MetadataClient : public QObject
{
    Q_OBJECT

public:
    /// Opens the channel at once.
    MetadataClient(const QString& host, quint16 port, QObject* parent = nullptr);
    ~MetadataClient() override;

    static constexpr qsizetype mostWaiting = 5000;

    bool isKeepaliveRunning() const { return m_keepaliveTimer.isActive(); }

private:
    void onConnected();
    void closed();
    void onError();
    void onKeepaliveTimer();
    void onTextMessageReceived(const QString& message);
    void handleSome();
    void handleMessage(const QString& message);
    bool isFetched();

    QWebSocket m_webSocket;
    QTimer m_keepaliveTimer;
    QQueue<QString> m_waiting;
    Turn m_turn;
    QElapsedTimer m_second;
    int m_fetched = 0; // in that second
};

} // namespace vantrel
