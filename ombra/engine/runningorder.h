#pragma once

#include "ombra/engine/slotsource.h"
#include "tarn/media/playenums.h"

#include <map>
#include <optional>
#include <string>

namespace vantrel::ombra {

/// What a playback has loaded. The item is empty where the library has no such media.
struct Loaded
{
    std::string url; // where it is in the library, or was before it was held
    std::optional<MediaItem> item;
    EndAction endAction = EndAction::Next;
    bool held = false; // plays on, though the library has it no more
    // What comes before and after it in its list; empty at the ends. Where it is held, what did.
    std::string previous{};
    std::string next{};
};

/// Whether both are the same pictures and sound, whatever is done with them.
bool isSameMedium(const std::optional<MediaItem>& one, const std::optional<MediaItem>& other);

/// Works out what comes after what: the slots or entries beside each other, without those that cannot be
/// played. One for each playback; the io_context's thread.
class RunningOrder
{
public:
    explicit RunningOrder(const SlotSource& source)
        : m_source(source)
    {
    }

    /// Slots have no end action of their own, and keep the one before, but for Next and Go to.
    Loaded load(const std::string& url, std::optional<MediaItem> item, EndAction before) const;
    /// What is on air when that one's end action is done; nothing where none follows.
    std::optional<Loaded> after(const Loaded& loaded) const;
    /// The nearest one after (direction 1) or before (-1) it; nothing where there is none.
    std::optional<Loaded> beside(const Loaded& loaded, int direction) const;
    /// Where the one after it is that is expected to play: what is known to fail is not waited for.
    std::string expectedAfter(const Loaded& loaded) const;
    /// Follows the library's newest edit: true when it has the medium, be it elsewhere. Otherwise only the
    /// neighbours are followed, and item is what has come in its place.
    bool followEdit(Loaded& loaded, std::optional<MediaItem>& item) const;

    /// It could not be played: passed over until forgetFailures(), or until the library says otherwise.
    void noteFailure(const Loaded& loaded);
    void forgetFailures() { m_failed.clear(); }

private:
    bool hasFailed(const MediaItem& item) const;
    void findNeighbours(Loaded& loaded) const;
    std::string whereIs(const std::string& url, const std::string& other, int direction) const;

    const SlotSource& m_source;
    std::map<std::string, bool> m_failed; // content URL; what the library said of it then
};

} // namespace vantrel::ombra
