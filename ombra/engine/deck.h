#pragma once

#include "ombra/decode/audiofeed.h"
#include "ombra/decode/picturefeed.h"
#include "ombra/engine/slotsource.h"
#include "tarn/media/playenums.h"

#include <functional>
#include <memory>
#include <optional>

namespace vantrel::ombra {

/// One medium being played: its feeds of pictures and of sound, its clock and what happens at its end.
/// Belongs to a Player; both the controlling and the mixing thread call it under the engine's lock, and
/// nothing here waits. Times are seconds of the media; "now" is the mixing clock in seconds.
class Deck
{
public:
    /// At the position (at the in point where there is none), in the given state.
    Deck(MediaSource source, const MediaItem& item, EndAction endAction, ScaleMode scaling,
         std::optional<double> position, SourcePlayState state, std::function<void()> wake,
         PictureOpener open = openReader);

    /// Opens the medium and decodes, once; a deck that was never begun costs nothing.
    void begin();
    /// Waits at the in point with picture and sound ready, whatever its state, until it is released.
    void hold() { m_held = true; }
    /// Begins from there as if that had been so many seconds before now.
    void release(double now, double ago);
    /// Whether it can be released, and plays from that moment.
    bool prepared() const { return m_held && landed() && !failed() && m_audio.ready(); }
    /// At the end nothing happens but that it holds: another deck is there to go on.
    void setFollowed(bool followed) { m_followed = followed; }
    /// Ends all decoding at once, without waiting for it. When idle(), letting the deck go waits for nobody.
    void retire();
    bool idle() const { return m_audio.idle() && m_feed.idle(); }

    void setState(SourcePlayState state);
    void setEndAction(EndAction action) { m_endAction = action; }
    EndAction endAction() const { return m_endAction; }
    /// New in and out points and duration of the same medium; playback goes on where it is.
    void setItem(const MediaItem& item);
    /// How its pictures stand in an output.
    void setScaling(ScaleMode scaling) { m_scaling = scaling; }
    ScaleMode scaling() const { return m_scaling; }
    void seek(double position);
    /// The nearest position that can be sought.
    double seekable(double position) const;
    /// Whether a seek there costs nothing, since its picture and sound lie ready.
    bool holds(double position) const;
    void seekInpoint() { seek(m_item.inpoint); }
    /// To the last picture before the out point.
    void seekOutpoint();
    /// Pauses, and goes on (or back) by whole pictures between the in and the out point.
    void step(int pictures);

    /// Takes what the feed has for this moment, which is a picture whose time comes by so many seconds after
    /// it. At the end it does as the end action says.
    void advance(double now, double lead = 0);
    /// Plays no further, though it is not paused: another one is to follow.
    bool atEnd() const { return m_atEnd && m_state == SourcePlayState::Play; }
    /// Seconds by which the end lay before this moment, where it was reached since the moment before; below 0
    /// where it comes by the lead.
    double past() const { return m_past; }
    /// Seconds to the end, as far as that is known ahead; endless before the first picture and for what never
    /// ends.
    double remaining() const;
    /// Whether only its last picture will tell where it ends.
    bool endIsUnknown() const;
    /// Seconds from the in point to the end; endless as above, nothing until the medium is opened.
    std::optional<double> length() const;

    const Ref<DecodedPicture>& image() const { return m_image; } // null before the first picture
    const Sound& sound() const { return m_sound; }               // played since the advance before
    bool soundGoesOn() const { return m_goesOn; } // it begins where that of the advance before ended
    /// Of the medium; nothing until they are known.
    std::optional<int> channels() const { return m_audio.channels(); }
    /// Whether the picture for this moment should have been decoded by now, and was not.
    bool late() const { return m_late; }
    /// How many pictures came due since the advance before and were not decoded by then.
    int missed() const { return m_missed; }
    /// The share of the time there is that decoding its pictures takes; above 1 it cannot keep up.
    double load() const { return m_feed.status().load; }
    double position() const { return m_position; } // of the image
    double target() const { return m_target; }     // what was sought last
    SourcePlayState state() const { return m_state; }
    bool landed() const { return !m_awaiting; } // what is shown is what was sought last
    bool failed() const { return m_feed.status().failed; }
    /// Whether it would play if its medium could be opened.
    bool waitsToPlay() const { return m_waitsToPlay; }
    /// Stops for want of its medium.
    void giveUp();
    /// Whether it can come on air: one that fails in a list is passed over instead.
    bool ready() const { return landed() && !(failed() && m_state == SourcePlayState::Play); }
    PictureFeed::Status status() const { return m_feed.status(); }
    double outpoint() const; // the out point, else the end of the media; 0 while that is unknown or endless
    double duration() const; // of the media untrimmed, 0 as above

private:
    /// The out point or the end of the media. While it plays, only the last picture itself ends a medium,
    /// since files are often a little longer or shorter than they say.
    double end(const PictureFeed::Status& status, bool playing) const;
    double mediumEnd(const PictureFeed::Status& status, bool playing) const;
    double withSound(double pictures) const;
    double seekLimit() const;
    void start(double position);
    bool soundIsDue(double now);
    void startClock(double moment);
    void play(double now, const PictureFeed::Status& status);
    void hear(double to);
    void countMissed();
    void show(const Picture& picture);
    void land(const Picture& picture);
    void fail();
    void finish(double end);
    void doEndAction();

    MediaItem m_item;
    bool m_begun = false;
    bool m_held = false;
    bool m_followed = false;
    EndAction m_endAction;
    ScaleMode m_scaling;
    SourcePlayState m_state;
    double m_target; // sought last
    bool m_awaiting = true;
    bool m_waitsToPlay = false;
    bool m_toOutpoint = false; // the target is the out point, which is not known yet
    bool m_atEnd = false;
    bool m_endIsDue = false; // the end action was put off
    bool m_late = false;
    int m_missed = 0;
    int m_missedSoFar = 0; // since the picture that stands
    double m_lead = 0;
    double m_past = 0;
    std::optional<double> m_soundAwaitedSince; // "now"
    std::optional<double> m_clockStart;        // "now" at which m_clockPosition was shown, while playing
    double m_clockPosition = 0;
    double m_clock = 0;   // the position by the clock, which runs on between pictures
    double m_heardTo = 0; // the position up to which the sound was taken
    Sound m_sound;
    bool m_goesOn = false;
    bool m_beginsAnew = true; // what is heard next
    Ref<DecodedPicture> m_image;
    double m_position;
    double m_shownFor = 0; // seconds that the image stands
    double m_begin = 0;    // from where the clock starts when it does
    // Last: their threads call wake.
    AudioFeed m_audio;
    PictureFeed m_feed;
};

} // namespace vantrel::ombra
