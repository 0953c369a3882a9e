#include "ombra/engine/deck.h"

#include "tarn/media/mediaenums.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

namespace {

/// Less than any picture, more than the tolerance of a seek: a time this much before an end means the picture
/// before.
constexpr double beforeEnd = 0.001;
/// Seconds for which pictures wait for the sound to begin with them.
constexpr double soundPatience = 0.5;
/// Seconds by which a picture may miss its time: what falls between two moments of the mixing clock.
constexpr double lateTolerance = 0.06;

} // namespace

Deck::Deck(MediaSource source, const MediaItem& item, EndAction endAction, ScaleMode scaling,
           std::optional<double> position, SourcePlayState state, std::function<void()> wake,
           PictureOpener open)
    : m_item(item)
    , m_endAction(endAction)
    , m_scaling(scaling)
    , m_state(state)
    , m_target(position.value_or(item.inpoint))
    , m_position(m_target)
    , m_begin(m_target)
    , m_audio(source, m_target, item.contentUrl, wake)
    , m_feed(std::move(source), m_target, item.contentUrl, wake, std::move(open))
{
}

void Deck::begin()
{
    if (std::exchange(m_begun, true))
        return;
    m_audio.start();
    m_feed.start();
}

void Deck::retire()
{
    m_audio.stop();
    m_feed.stop();
}

void Deck::release(double now, double ago)
{
    m_held = false;
    startClock(now - ago);
}

void Deck::startClock(double moment)
{
    m_clockStart = moment;
    m_clockPosition = m_begin;
    m_heardTo = m_begin;
    m_beginsAnew = true;
}

void Deck::giveUp()
{
    setState(SourcePlayState::Stop);
    m_waitsToPlay = true;
}

void Deck::setState(SourcePlayState state)
{
    m_waitsToPlay = false;
    if (state == SourcePlayState::Stop && m_state != SourcePlayState::Stop)
        start(m_item.inpoint);
    if (state == SourcePlayState::Play && m_atEnd)
        start(m_item.inpoint);
    if (state != m_state) {
        m_clockStart.reset();
        m_soundAwaitedSince.reset();
    }
    m_state = state;
}

void Deck::setItem(const MediaItem& item)
{
    const bool moved = item.inpoint != m_item.inpoint;
    m_item = item;
    if (moved && (m_held || m_state == SourcePlayState::Stop))
        start(m_item.inpoint);
}

void Deck::seek(double position)
{
    start(seekable(position));
    m_waitsToPlay = false;
    if (m_state == SourcePlayState::Stop)
        m_state = SourcePlayState::Pause;
}

double Deck::seekable(double position) const
{
    return std::clamp(position, 0.0, std::max(0.0, seekLimit()));
}

bool Deck::holds(double position) const
{
    return m_feed.holds(position) && m_audio.holds(position);
}

void Deck::seekOutpoint()
{
    const double limit = end(m_feed.status(), false);
    if (std::isinf(limit) && !m_feed.status().opened) {
        m_toOutpoint = true;
        return;
    }
    seek(std::isinf(limit) ? m_item.inpoint : limit - beforeEnd);
}

void Deck::step(int pictures)
{
    const double picture = 1 / (m_feed.status().fps > 0 ? m_feed.status().fps : 25);
    // Clear of where pictures meet, so that no rounding decides which one is hit. The first step goes by what
    // the shown picture really takes: not all media hold all of theirs equally long.
    double target = m_target + pictures * picture;
    if (!m_awaiting && pictures > 0)
        target = m_position + m_shownFor + beforeEnd + (pictures - 1) * picture;
    else if (!m_awaiting && pictures < 0)
        target = m_position - 2 * beforeEnd + (pictures + 1) * picture;
    const double last = std::max(m_item.inpoint, end(m_feed.status(), false) - beforeEnd);
    start(std::clamp(target, m_item.inpoint, last));
    m_state = SourcePlayState::Pause;
}

void Deck::start(double position)
{
    m_target = position;
    m_awaiting = true;
    m_toOutpoint = false;
    m_atEnd = false;
    m_endIsDue = false;
    m_clockStart.reset();
    m_soundAwaitedSince.reset();
    m_audio.seek(position);
    m_feed.seek(position);
}

void Deck::advance(double now, double lead)
{
    m_lead = lead;
    const PictureFeed::Status status = m_feed.status();
    m_sound.channels = 0;
    m_sound.samples.clear();
    m_sound.seams.clear();
    m_late = false;
    m_missed = 0;
    m_past = 0;
    if (status.failed) {
        fail();
        return;
    }
    if (m_toOutpoint && status.opened)
        seekOutpoint();
    if (m_endIsDue && !m_followed)
        doEndAction();
    const bool playing = m_state == SourcePlayState::Play && !m_atEnd && !m_held;
    if (m_awaiting) {
        const std::optional<Picture> picture =
            playing && !soundIsDue(now) ? std::nullopt : m_feed.take(m_target);
        if (!picture)
            return;
        land(*picture);
    }
    if (playing && (m_clockStart || soundIsDue(now)))
        play(now, status);
}

void Deck::fail()
{
    if (std::exchange(m_awaiting, false))
        m_position = m_target; // where it would stand: what lasts of it is not lost
    m_image = nullptr;
    if (m_held || m_state != SourcePlayState::Play || m_atEnd)
        return;
    m_atEnd = true;
    if (m_endAction != EndAction::Next) {
        m_state = SourcePlayState::Stop;
        m_waitsToPlay = true;
    }
}

/// The first picture of what was sought. Where that lies within the picture, or in sound behind the last one,
/// the clock begins there.
void Deck::land(const Picture& picture)
{
    show(picture);
    m_awaiting = false;
    if (m_target > m_position &&
        m_target < std::max(m_position + m_shownFor, withSound(m_position + m_shownFor)))
        m_begin = m_target;
}

/// Pictures and sound begin together: whether the sound is there, or was waited for long enough.
bool Deck::soundIsDue(double now)
{
    if (!m_soundAwaitedSince)
        m_soundAwaitedSince = now;
    return m_audio.ready() || now - *m_soundAwaitedSince >= soundPatience;
}

void Deck::play(double now, const PictureFeed::Status& status)
{
    if (!m_clockStart)
        startClock(now);
    m_clock = m_clockPosition + now - *m_clockStart;
    const double limit = end(status, true);
    const bool ends = m_clock > limit - std::max(PictureReader::tolerance, m_lead);
    // In whole samples of the mixing clock: all that play through a moment have equally many of it.
    const std::int64_t samples =
        Sound::sampleAt(m_clockPosition) + Sound::sampleAt(now) - Sound::sampleAt(*m_clockStart);
    hear(ends ? limit : static_cast<double>(samples) / Sound::sampleRate);
    if (ends) {
        finish(limit);
        return;
    }
    if (const std::optional<Picture> picture = m_feed.take(m_clock + m_lead))
        show(*picture);
    else if (status.ended && m_clock > status.endTime && m_shownFor > 0) // its sound goes on
        m_begin = m_position +=
            std::floor((m_clock - m_position + PictureReader::tolerance) / m_shownFor) * m_shownFor;
    m_late = m_clock > m_position + m_shownFor + lateTolerance && m_feed.isBehind();
    countMissed();
}

void Deck::countMissed()
{
    const double overdue = m_clock + m_lead - m_position - m_shownFor;
    if (overdue < 0 || m_shownFor <= 0 || !m_feed.isBehind())
        return;
    const int missed = 1 + static_cast<int>(std::min(overdue / m_shownFor, 1e6));
    m_missed = std::max(0, missed - m_missedSoFar);
    m_missedSoFar = std::max(m_missedSoFar, missed);
}

/// Takes the sound up to a position of the clock.
void Deck::hear(double to)
{
    if (to > m_heardTo)
        m_audio.take(m_heardTo, to, m_sound);
    if (m_sound.frames() > 0)
        m_goesOn = !std::exchange(m_beginsAnew, false);
    m_heardTo = std::max(m_heardTo, to);
}

void Deck::show(const Picture& picture)
{
    m_image = picture.image;
    m_position = picture.time;
    m_shownFor = picture.duration;
    m_begin = m_position;
    m_missedSoFar = 0;
}

void Deck::finish(double end)
{
    if (const std::optional<Picture> picture = m_feed.take(end - beforeEnd))
        show(*picture);
    m_atEnd = true;
    m_past = m_clock - end;
    m_clockStart.reset();
    m_endIsDue = true;
    if (!m_followed)
        doEndAction();
}

void Deck::doEndAction()
{
    m_endIsDue = false;
    switch (m_endAction) {
    case EndAction::Repeat:
        // What is no longer than a picture has nothing to repeat, and would seek for ever.
        if (length().value_or(0) > 0.05)
            start(m_item.inpoint);
        else
            m_state = SourcePlayState::Pause;
        break;
    case EndAction::Stop:
        setState(SourcePlayState::Stop);
        break;
    case EndAction::Next:
        break;
    case EndAction::Pause:
    case EndAction::GoTo:
        m_state = SourcePlayState::Pause;
        break;
    }
}

double Deck::end(const PictureFeed::Status& status, bool playing) const
{
    if (status.type == MediaType::ImageFile)
        return m_item.stillDuration.value_or(PictureReader::endless);
    return std::min(m_item.outpoint.value_or(PictureReader::endless), mediumEnd(status, playing));
}

double Deck::mediumEnd(const PictureFeed::Status& status, bool playing) const
{
    if (!status.ended)
        return playing || status.duration <= 0 ? PictureReader::endless : withSound(status.duration);
    const double whole = withSound(status.endTime);
    return playing && whole > status.endTime && !m_audio.ended() ? PictureReader::endless : whole;
}

/// Sound that is longer than the pictures plays on.
double Deck::withSound(double pictures) const
{
    const double sound = m_audio.end();
    return sound > pictures + AudioReader::padding ? sound : pictures;
}

double Deck::remaining() const
{
    if (m_awaiting)
        return PictureReader::endless;
    return m_atEnd ? 0 : end(m_feed.status(), false) - (m_clockStart ? m_clock : m_begin);
}

bool Deck::endIsUnknown() const
{
    const PictureFeed::Status status = m_feed.status();
    return status.opened && status.duration <= 0 && !m_item.outpoint && !status.ended;
}

std::optional<double> Deck::length() const
{
    const PictureFeed::Status status = m_feed.status();
    if (!status.opened)
        return std::nullopt;
    return std::max(0.0, end(status, false) - m_item.inpoint);
}

double Deck::seekLimit() const
{
    const PictureFeed::Status status = m_feed.status();
    if (status.type == MediaType::ImageFile)
        return end(status, false);
    return status.duration > 0 ? withSound(status.duration) : PictureReader::endless;
}

double Deck::outpoint() const
{
    if (m_feed.status().type == MediaType::ImageFile)
        return m_item.stillDuration.value_or(0);
    const double whole = duration();
    return m_item.outpoint ? (whole > 0 ? std::min(*m_item.outpoint, whole) : *m_item.outpoint) : whole;
}

double Deck::duration() const
{
    const PictureFeed::Status status = m_feed.status();
    if (status.type == MediaType::ImageFile)
        return m_item.stillDuration.value_or(0);
    return std::isinf(status.duration) || status.duration <= 0 ? 0 : withSound(status.duration);
}

} // namespace vantrel::ombra
