#include "common/views/playlist/listclock.h"

#include "common/media/address/mediautils.h"
#include "common/media/address/showntext.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/library/playlistprovider.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "common/session/settings/timeutils.h"
#include "util/clocktime.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace vantrel {

using media::MediaUtils;

namespace {

constexpr int tickMs = 250;      // so that no second of the clock is passed over
constexpr int toleranceMs = 400; // by which a position may be early or late without moving an end

} // namespace

ListClock::ListClock(GUIPlayback* playback, AbstractPlaylistProvider* provider, QObject* parent)
    : QObject(parent)
    , m_playback(playback)
    , m_provider(provider)
{
    connect(playback, &GUIPlayback::mediaChanged, this, &ListClock::follow);
    connect(playback, &GUIPlayback::heldMediaChanged, this, &ListClock::follow);
    connect(playback, &GUIPlayback::nextMediaChanged, this, &ListClock::courseChanged);
    connect(playback, &SceneObjectWrapper::reset, this, &ListClock::follow);
    connect(playback, &GUIPlayback::stateChanged, this, &ListClock::tick);
    // Once for all that an edit changes.
    m_recalculate.setSingleShot(true);
    m_recalculate.setInterval(0);
    connect(&m_recalculate, &QTimer::timeout, this, &ListClock::recalculate);
    using Provider = AbstractPlaylistProvider;
    // An edit may tell of every entry: a timer that runs is left alone.
    const auto later = [this] {
        if (!m_recalculate.isActive())
            m_recalculate.start();
    };
    const auto ofList = [this, later](uint playlist) {
        if (playlist == m_playlist)
            later();
    };
    connect(provider, &Provider::reset, this, later);
    connect(provider, &Provider::entrySlotsModified, this, later);
    connect(provider, &Provider::playlistAdded, this, ofList);
    connect(provider, &Provider::playlistChanged, this, ofList);
    connect(provider, &Provider::playlistRemoved, this, ofList);
    connect(provider, &Provider::entryAdded, this, ofList);
    connect(provider, &Provider::entryChanged, this, ofList);
    connect(provider, &Provider::entryRemoved, this, ofList);
    m_tick.setInterval(tickMs);
    connect(&m_tick, &QTimer::timeout, this, &ListClock::ticked);
    follow();
}

ListClock* ListClock::ofProgram(Session* session)
{
    if (auto* present = session->findChild<ListClock*>(QString(), Qt::FindDirectChildrenOnly))
        return present;
    return new ListClock(session->sceneObjectProvider()->programPlayback(), session->playlistProvider(),
                         session);
}

/// An entry that is removed, or whose medium is another one, plays to its end, and the list goes on.
bool ListClock::isHeld() const
{
    return m_playlist > 0 && m_playback && m_playback->media().isEmpty() &&
           !m_playback->heldMedia().isEmpty();
}

void ListClock::follow()
{
    if (isHeld()) {
        recalculate();
        return;
    }
    m_isGone = false;
    const QString media = m_playback ? m_playback->media() : QString();
    const auto entry = MediaUtils::isPlaylistAddress(media) ? MediaUtils::parsePlaylistAddress(media)
                                                            : media::PlaylistAndEntry();
    m_playlist = entry.valid ? static_cast<uint>(entry.playlist) : 0;
    m_playing = entry.valid ? entry.entry : EntryAddress();
    recalculate();
}

void ListClock::recalculate()
{
    m_recalculate.stop();
    m_zero = {};
    // It may not be read yet, or be gone with what it plays.
    const bool isKnown = m_playlist > 0 && (m_provider->playlist(m_playlist) || isHeld());
    const auto rundown = [this] {
        return Rundown(m_provider->entries(m_playlist), m_playing, m_isGone,
                       [this](const GuiPlaylistEntry& entry) { return lengthOf(entry); });
    };
    m_rundown = isKnown ? rundown() : Rundown();
    // From here on its number may become another entry's.
    m_isGone = isHeld() && m_rundown.kind() == Rundown::Kind::Removed;
    if (m_playlist > 0)
        m_tick.start();
    else
        m_tick.stop();
    Q_EMIT courseChanged();
}

void ListClock::tick()
{
    Q_EMIT ticked();
}

double ListClock::lengthOf(const GuiPlaylistEntry& entry) const
{
    const auto slot = m_provider->entrySlot(entry.playlistNumber(), entry.address());
    if (!slot)
        return 0;
    if (slot->hasInfiniteDuration())
        return std::numeric_limits<double>::infinity();
    return std::max(0.0, slot->outpoint().value_or(slot->duration()) - slot->inpoint());
}

double ListClock::left() const
{
    if (!m_playback)
        return 0;
    const double end = m_playback->outpoint().value_or(m_playback->duration());
    return std::max(0.0, end - m_playback->mediaPosition());
}

bool ListClock::isRunning() const
{
    return m_playback && m_playback->state() == SourcePlayState::Play;
}

void ListClock::setStale(bool stale)
{
    if (std::exchange(m_isStale, stale) != stale)
        Q_EMIT ticked();
}

QDateTime ListClock::zero() const
{
    // Without a word the show goes on, as far as anybody knows.
    const double seconds = left();
    const bool isNews = std::exchange(m_left, seconds) != seconds || !isRunning();
    if (m_zero.isValid() && (m_isStale || !isNews))
        return m_zero;
    const QDateTime now = QDateTime::currentDateTime().addMSecs(std::llround(seconds * 1000));
    // Positions come a little early and late; an end that stands must not go to and fro with them.
    if (!m_zero.isValid() || std::abs(m_zero.msecsTo(now)) > toleranceMs)
        m_zero = now;
    return m_zero;
}

QString ListClock::clockText(const QDateTime& time)
{
    return time.addMSecs(500).toString(QStringLiteral("HH:mm:ss"));
}

std::optional<QDateTime> ListClock::endOf(const EntryAddress& address) const
{
    const std::optional<double> seconds = m_rundown.endOf(address);
    return seconds ? std::optional(zero().addMSecs(std::llround(*seconds * 1000))) : std::nullopt;
}

QString ListClock::text() const
{
    const QString text = courseText();
    return m_isStale && !text.isEmpty() ? tr("%1 (as last known)").arg(text) : text;
}

QString ListClock::courseText() const
{
    using Kind = Rundown::Kind;
    const Kind kind = m_rundown.kind();
    if (kind == Kind::None)
        return m_playlist > 0 ? tr("Playlist %1 is on air; it is not read yet").arg(m_playlist) : QString();
    if (kind == Kind::Removed)
        return tr("%1 was removed and plays to its end")
            .arg(QString::fromStdString(m_playing.toString(false)));
    const bool isNow = m_rundown.last() == m_playing;
    const QString entry = QString::fromStdString(m_rundown.last().toString(false));
    if (kind == Kind::Endless && isNow)
        return tr("%1 plays until somebody goes on").arg(entry);
    if (kind == Kind::Repeats && isNow)
        return tr("%1 repeats until somebody goes on").arg(entry);
    const QDateTime ends = zero();
    const double now =
        isRunning() ? std::max<qint64>(0, QDateTime::currentDateTime().msecsTo(ends)) / 1000.0 : left();
    const double seconds = now + m_rundown.seconds();
    const QString in = TimeUtils::formatClockTimeShort(clocktime::fromSeconds(seconds));
    if (!isRunning())
        return tr("%1 left, not running").arg(in);
    const QDateTime then = ends.addMSecs(std::llround(m_rundown.seconds() * 1000));
    const bool isToday = then.date() == QDate::currentDate();
    const QString at =
        isToday ? clockText(then) : QLocale().toString(then, QStringLiteral("ddd ")) + clockText(then);
    switch (kind) {
    case Kind::Endless:
        return tr("From %2 on %1 plays until somebody goes on").arg(entry, at);
    case Kind::Repeats:
        return tr("From %2 on %1 repeats").arg(entry, at);
    case Kind::Pauses:
        return tr("Pauses after %1 at %2 (in %3)").arg(entry, at, in);
    case Kind::Stops:
        return tr("Stops after %1 at %2 (in %3)").arg(entry, at, in);
    default:
        return tr("Ends at %1 (in %2)").arg(at, in);
    }
}

EntryAddress ListClock::next() const
{
    const QString told = m_playback ? m_playback->nextMedia() : QString();
    const auto entry = MediaUtils::isPlaylistAddress(told) ? MediaUtils::parsePlaylistAddress(told)
                                                           : media::PlaylistAndEntry();
    const bool isOfList = entry.valid && m_playlist > 0 && static_cast<uint>(entry.playlist) == m_playlist;
    return isOfList ? entry.entry : m_rundown.next();
}

QString ListClock::nextName() const
{
    return next().isValid() ? nameOf(m_provider, m_playlist, next()) : QString();
}

QString ListClock::nameOf(const AbstractPlaylistProvider* provider, uint playlist,
                          const EntryAddress& address)
{
    const QString number = QString::fromStdString(address.toString(false));
    const auto slot = provider->entrySlot(playlist, address);
    return slot && !slot->name().isEmpty() ? number + u' ' + shownText(slot->name()) : number;
}

} // namespace vantrel
