#include "common/session/link/linkhealth.h"

#include "common/session/link/connectionhandler.h"
#include "common/session/mirror/guiplayback.h"

#include <algorithm>

namespace vantrel {

namespace {

// Milliseconds, all of them.
constexpr int checkInterval = 100;
constexpr qint64 patience = 1000;        // four signs of life
constexpr qint64 lateTick = 500;         // of our own: after it the words that wait come first
constexpr qint64 libraryPatience = 3000; // to read it, or to begin anew
constexpr double endSlack = 0.1;         // seconds before its end in which a position may stand

} // namespace

LinkHealth::LinkHealth(ConnectionHandler* connection, QObject* parent)
    : QObject(parent)
    , m_connection(connection)
    , m_clock(&ConnectionHandler::now)
{
    m_timer.setInterval(checkInterval);
    connect(&m_timer, &QTimer::timeout, this, &LinkHealth::onTimer);
    connect(connection, &ConnectionHandler::connected, this, &LinkHealth::onConnected);
    connect(connection, &ConnectionHandler::disconnected, this, &LinkHealth::onDisconnected);
    connect(connection, &ConnectionHandler::reconnecting, this, &LinkHealth::onReconnecting);
    connect(connection, &ConnectionHandler::connectionAddr, this, &LinkHealth::onAddress);
}

LinkHealth::~LinkHealth() = default;

void LinkHealth::follow(GUIPlayback* playback)
{
    m_followed.append({playback});
    const qsizetype at = m_followed.size() - 1;
    const auto begin = [this, at] { m_followed[at].isMoving = false; };
    connect(playback, &GUIPlayback::stateChanged, this, begin);
    connect(playback, &GUIPlayback::mediaChanged, this, begin);
    connect(playback, &GUIPlayback::mediaPositionChanged, this,
            [this, playback, at] { m_followed[at].isMoving = playback->state() == SourcePlayState::Play; });
}

void LinkHealth::setClock(std::function<qint64()> clock)
{
    m_clock = std::move(clock);
}

void LinkHealth::setLibraryCurrent(bool current)
{
    if (current)
        m_libraryLostAt = -1;
    else if (m_libraryLostAt < 0)
        m_libraryLostAt = m_clock();
    tell();
}

void LinkHealth::setWebAnswers(bool answers)
{
    m_webAnswers = answers;
    tell();
}

void LinkHealth::onConnected()
{
    m_state = State::Current;
    m_givesSigns = false;
    m_webAnswers = false;
    m_lastTick = m_clock();
    m_libraryLostAt = m_lastTick;
    for (Followed& followed : m_followed)
        followed.isMoving = false;
    m_timer.start();
    tell();
}

void LinkHealth::onDisconnected()
{
    if (m_state != State::Current && m_state != State::Silent)
        return;
    // Lost only when it is tried again, since the operator may have left; a link that brought no word ended
    // nothing.
    if (m_lostAt < 0 || m_connection->lastWord() >= m_connection->linkSince())
        m_lostAt = m_clock();
    m_state = State::None;
    m_timer.stop();
    tell();
}

void LinkHealth::onReconnecting()
{
    if (m_lostAt < 0)
        m_lostAt = m_clock();
    m_state = State::Lost;
    m_timer.start();
    tell();
}

void LinkHealth::onAddress(const QString& address)
{
    if (!address.isEmpty())
        return;
    m_state = State::None;
    m_lostAt = -1;
    m_timer.stop();
    tell();
}

void LinkHealth::onTimer()
{
    const qint64 now = m_clock();
    const bool wasHeldUp = now - std::exchange(m_lastTick, now) > lateTick;
    if (!wasHeldUp)
        check();
}

void LinkHealth::check()
{
    if (m_state == State::Current || m_state == State::Silent)
        m_state = silence() > patience && isOwedAWord() ? State::Silent : State::Current;
    tell();
}

qint64 LinkHealth::silence() const
{
    return m_clock() - std::max(m_connection->lastWord(), m_connection->linkSince());
}

/// Its first word, which is its scene, a sign of life of those that give them, or a position that moves on.
bool LinkHealth::isOwedAWord() const
{
    if (m_givesSigns || m_connection->lastWord() < m_connection->linkSince())
        return true;
    return std::ranges::any_of(m_followed, [](const Followed& followed) {
        const GUIPlayback* playback = followed.playback;
        if (!playback || !followed.isMoving || playback->state() != SourcePlayState::Play)
            return false;
        const double end = playback->outpoint().value_or(playback->duration());
        return playback->mediaPosition() < end - endSlack;
    });
}

QString LinkHealth::text() const
{
    if (m_state == State::Silent)
        return tr("No answer for %1 s").arg(silence() / 1000);
    if (m_state != State::Lost)
        return {};
    const qint64 seconds = (m_clock() - m_lostAt) / 1000;
    const QString minutes = QStringLiteral("%1:%2")
                                .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
                                .arg(seconds % 60, 2, 10, QLatin1Char('0'));
    return tr("Lost for %1")
        .arg(seconds < 3600 ? minutes : QStringLiteral("%1:%2").arg(seconds / 3600).arg(minutes));
}

QString LinkHealth::detail() const
{
    switch (m_state) {
    case State::None:
        return {};
    case State::Current:
        if (m_libraryLostAt >= 0 && m_clock() - m_libraryLostAt > libraryPatience)
            return tr("The players answer, the library does not: play and take work, "
                      "edits are refused until it is read again.");
        return {};
    case State::Silent:
        return m_webAnswers ? tr("Its library answers, its players do not: nothing is sent to them.")
                            : tr("What you see is old, and nothing is sent.");
    case State::Lost:
        return m_webAnswers ? tr("Its library answers, its players do not: it is tried again.")
                            : tr("What you see is the last known state.");
    }
    return {};
}

void LinkHealth::tell()
{
    const QString now = QString::number(static_cast<int>(m_state)) + text() + detail();
    if (std::exchange(m_told, now) != now)
        Q_EMIT changed();
}

} // namespace vantrel
