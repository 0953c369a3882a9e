#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>

namespace vantrel {

class ConnectionHandler;
class GUIPlayback;

/// Whether what stands on the screen is what the server says now. A server gives a sign of life every 250 ms;
/// one that never does is judged by the positions of what plays. Only while it is not Silent may anything be
/// sent: what a hung server finds in its sockets it would do in one burst, on air, when it comes back. Owned
/// by the session; main thread.
class LinkHealth : public QObject
{
    Q_OBJECT

public:
    enum class State {
        None,    // no server was asked for, or the operator left it
        Current, // the server speaks
        Silent,  // the link stands, and nothing has come for more than a second
        Lost,    // the link has ended and is tried again
    };

    explicit LinkHealth(ConnectionHandler* connection, QObject* parent = nullptr);
    ~LinkHealth() override;

    /// A playback whose position tells of the server while it plays.
    void follow(GUIPlayback* playback);
    /// The server gave a sign of life: from now on it owes them.
    void noteSign() { m_givesSigns = true; }
    /// Whether the library is read and followed; it comes by roads of its own.
    void setLibraryCurrent(bool current);
    /// Whether the server's web side answers while the link does not.
    void setWebAnswers(bool answers);

    State state() const { return m_state; }
    /// "No answer for 3 s", "Lost for 00:12"; empty while there is nothing to tell.
    QString text() const;
    /// What else the operator has to know, as a sentence, such as which half of the server still answers.
    QString detail() const;

    /// Milliseconds that only go up, on the clock of ConnectionHandler::lastWord(); for tests.
    void setClock(std::function<qint64()> clock);
    /// Judges anew; the timer does it ten times a second.
    void check();

Q_SIGNALS:
    /// State, text or detail is another one.
    void changed();

private:
    struct Followed
    {
        QPointer<GUIPlayback> playback;
        bool isMoving = false; // seen to, since it began to play
    };

    void onTimer();
    void onConnected();
    void onDisconnected();
    void onReconnecting();
    void onAddress(const QString& address);
    bool isOwedAWord() const;
    qint64 silence() const;
    void tell();

    ConnectionHandler* m_connection;
    std::function<qint64()> m_clock;
    QTimer m_timer;
    QList<Followed> m_followed;
    State m_state = State::None;
    bool m_givesSigns = false;
    qint64 m_lostAt = -1;       // -1 while no link was lost
    qint64 m_libraryLostAt = 0; // -1 while the library is current
    qint64 m_lastTick = 0;
    bool m_webAnswers = false;
    QString m_told;
};

} // namespace vantrel
