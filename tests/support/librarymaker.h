#pragma once

#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace vantrel::test {

inline MediaSlot makeSlot(const std::string& name, double duration = 10)
{
    MediaSlot slot(name, "file:///clips/" + name + ".mp4");
    slot.setInherentMediaDuration(duration);
    slot.setIsPlayable(true);
    return slot;
}

inline std::string slotUrl(int collection, int slot)
{
    return MediaAddress(collection, slot).toString();
}

/// Collections 1..collections with slots 1..slots, named "c<collection>s<slot>", of 10 s each.
inline Ref<MediaLibrary> makeLibrary(int collections, int slotCount)
{
    auto library = makeRef<MediaLibrary>();
    for (int c = 1; c <= collections; ++c) {
        MediaCollection collection("Collection " + std::to_string(c));
        for (int s = 1; s <= slotCount; ++s)
            collection.insertMediaSlot(s, makeSlot("c" + std::to_string(c) + "s" + std::to_string(s)), true);
        library->insertMediaCollection(c, collection, true);
    }
    return library;
}

/// Edits a library at random, valid edits only, from a seed. Collections that playlists play from stay.
class RandomEdits
{
public:
    explicit RandomEdits(unsigned seed)
        : m_random(seed)
    {
    }

    /// One to five edits at once.
    void edit(MediaLibrary& library)
    {
        for (int i = below(5); i >= 0; --i)
            editOnce(library);
    }

    int below(int bound) { return static_cast<int>(m_random() % static_cast<unsigned>(bound)); }

private:
    void editOnce(MediaLibrary& library)
    {
        const int collection = 1 + below(4);
        const int slot = 1 + below(8);
        const int playlist = 1 + below(3);
        switch (below(12)) {
        case 0:
            library.insertMediaCollection(5 + below(4), MediaCollection("new"), false);
            break;
        case 1:
            library.removeCollection(5 + below(4));
            break;
        case 2:
            if (MediaCollection* c = library.findCollection(collection))
                c->setName("name" + std::to_string(below(100)));
            break;
        case 3:
        case 4:
            if (MediaCollection* c = library.findCollection(collection))
                c->insertMediaSlot(slot, makeSlot("s" + std::to_string(below(100)), 1 + below(60)), true);
            break;
        case 5:
            if (MediaCollection* c = library.findCollection(collection))
                c->removeMediaSlot(slot);
            break;
        case 6:
            if (MediaSlot* s = library.findSlot(collection, slot))
                s->setOutpoint(below(2) ? std::optional<double>(1 + below(9)) : std::nullopt);
            break;
        case 7:
            if (MediaSlot* s = library.findSlot(collection, slot))
                s->setDurationType(below(4) ? MediaDurationType::Manual : MediaDurationType::Infinite);
            break;
        case 8:
            library.addPlaylist(playlist, Playlist("list"));
            break;
        case 9:
            if (below(4) == 0)
                library.removePlaylist(playlist);
            break;
        case 10:
            if (Playlist* p = library.findPlaylist(playlist))
                p->addEntry({1 + below(6), below(3)},
                            {slotUrl(collection, slot), EndAction::Next, TakeTransitionType::DirectCut, 1.0});
            break;
        case 11:
            if (Playlist* p = library.findPlaylist(playlist))
                p->removeEntry({1 + below(6), below(3)});
            break;
        }
    }

    std::mt19937 m_random;
};

} // namespace vantrel::test
