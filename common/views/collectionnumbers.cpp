#include "common/views/collectionnumbers.h"

#include "common/command/refusal.h"
#include "common/media/library/editqueue.h"
#include "common/media/library/medialibraryapi.h"
#include "common/session/session.h"
#include "tarn/media/medialibrary.h"

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

bool playTheSame(const MediaSlot& a, const MediaSlot& b)
{
    const Json* const one = a.toJson().find("contentUrl");
    const Json* const other = b.toJson().find("contentUrl");
    return one && other && *one == *other;
}

/// Nothing but what it holds tells one collection from another.
bool isSame(const MediaCollection* a, const MediaCollection* b)
{
    if (!a || !b)
        return false;
    if (a->toJson().sameNode(b->toJson()))
        return true;
    if (a->getSlots().size() != b->getSlots().size() || a->getName() != b->getName())
        return false;
    auto other = b->getSlots().begin();
    for (const auto& [number, slot] : a->getSlots()) {
        const auto& [otherNumber, otherSlot] = *other;
        if (number != otherNumber)
            return false;
        if (!slot.toJson().sameNode(otherSlot.toJson()) && !playTheSame(slot, otherSlot))
            return false;
        ++other;
    }
    return true;
}

bool haveSlotsInCommon(const MediaCollection& a, const MediaCollection& b)
{
    return std::ranges::any_of(a.getSlots(), [&b](const auto& each) {
        const MediaSlot* const other = b.getSlots().get(each.first);
        return other && playTheSame(*other, each.second) && !other->getUrl().empty();
    });
}

/// Whether what has the number now had another one, which it has left.
bool hasMovedTo(const MediaLibrary& before, const MediaLibrary& now, int number)
{
    const MediaCollection* const there = now.findCollection(number);
    return std::ranges::any_of(before.getCollections(), [&](const auto& each) {
        return each.first != number && isSame(&each.second, there) &&
               !isSame(&each.second, now.findCollection(each.first));
    });
}

/// Where what is held so has come since; -1 for nowhere.
int arrivedAt(const MediaCollection& known, const MediaLibrary& before, const MediaLibrary& now)
{
    for (const auto& [number, collection] : now.getCollections()) {
        if (isSame(&known, &collection) && !isSame(&known, before.findCollection(number)))
            return number;
    }
    return -1;
}

/// The number by now of what had this one; -1 where it is gone.
int numberBy(const MediaCollection& known, const MediaLibrary& before, const MediaLibrary& now, int number,
             bool isOther)
{
    const MediaCollection* const there = now.findCollection(number);
    if (isSame(&known, there))
        return number;
    // Edited where it stands, even where a duplicate shows it as it was.
    const bool canBeIt = there && !hasMovedTo(before, now, number);
    if (canBeIt && haveSlotsInCommon(known, *there))
        return number;
    if (const int moved = arrivedAt(known, before, now); moved >= 0)
        return moved;
    return canBeIt && (!isOther || there->getName() == known.getName()) ? number : -1;
}

} // namespace

bool FollowedCollection::isThere(const Number& number, const QString& what)
{
    if (*number < 0)
        tellNotDone(what, tr("The collection is not in the library any more."));
    return *number >= 0;
}

CollectionNumbers::CollectionNumbers(Session* session, QObject* parent)
    : QObject(parent)
    , m_session(session)
{
    if (!session)
        return;
    connect(session, &Session::libraryReadingChanged, this, &CollectionNumbers::followLibrary);
    followLibrary();
}

CollectionNumbers::~CollectionNumbers() = default;

/// Each connection has its own.
void CollectionNumbers::followLibrary()
{
    const MediaLibraryApi* const api = m_session->getMediaLibraryApi();
    if (!api || api == m_api)
        return;
    m_api = api;
    const auto look = [this] { this->look(false); };
    connect(api, &MediaLibraryApi::mediaLibraryReplaced, this, [this] { this->look(true); });
    // Before the models hear of it: who goes along has chosen the new number by then. While edits are under
    // way the library with them would be worked out for each message; once they are not, it is looked at.
    connect(api, &MediaLibraryApi::changesStarted, this, [api, look] {
        if (api->edits()->isEmpty())
            look();
    });
    connect(api->edits(), &EditQueue::submitted, this, look);
    connect(api->edits(), &EditQueue::dropped, this, look);
}

/// Whether some edit that is under way may give collections other numbers.
bool CollectionNumbers::isAnyMoving() const
{
    return m_api && m_api->edits()->movesCollections();
}

/// With the edits that are under way where some of them move collections; a copy, since the library itself
/// goes on.
Ref<const MediaLibrary> CollectionNumbers::expected() const
{
    const MediaLibraryApi* const api = m_session ? m_session->getMediaLibraryApi() : nullptr;
    if (!api)
        return {};
    return makeRef<MediaLibrary>(m_isAhead ? *api->expectedLibrary() : api->library());
}

CollectionNumbers::Number CollectionNumbers::follow(int collection)
{
    look(false);
    const auto number = std::make_shared<int>(collection);
    if (collection < 0)
        return number; // none
    for (const Followed& followed : m_followed) {
        if (const auto known = followed.number.lock(); known && *known == collection)
            return known;
    }
    m_followed.push_back({.number = number, .gone = {}});
    if (!m_known) {
        m_isAhead = isAnyMoving();
        m_known = expected();
    }
    return number;
}

void CollectionNumbers::look(bool isOther)
{
    std::erase_if(m_followed, [](const Followed& followed) { return followed.number.expired(); });
    if (m_followed.empty()) {
        m_known = {};
        return;
    }
    if (!isOther && m_api && m_api->edits()->isMaking())
        return; // it is looked at once that is made
    // Edits that move no collection are left out, since to work out what thousands of slots will be takes
    // time: what comes before one that does is known without it.
    const bool wasAhead = std::exchange(m_isAhead, isAnyMoving());
    if (m_isAhead && !wasAhead && m_known) {
        step(makeRef<MediaLibrary>(m_api->library()), isOther);
        m_known = m_api->edits()->expectedBeforeMoves();
    }
    step(expected(), isOther);
}

void CollectionNumbers::step(const Ref<const MediaLibrary>& now, bool isOther)
{
    if (!now)
        return;
    const Ref<const MediaLibrary> before = std::exchange(m_known, now);
    if (!before || before->toJson().sameNode(now->toJson()))
        return;
    bool isChanged = false;
    for (Followed& followed : m_followed)
        isChanged |= renumber(followed, *before, *now, isOther);
    if (isChanged)
        Q_EMIT changed();
}

bool CollectionNumbers::renumber(Followed& followed, const MediaLibrary& before, const MediaLibrary& now,
                                 bool isOther) const
{
    const auto number = followed.number.lock();
    if (!number)
        return false;
    if (followed.gone) {
        *number = arrivedAt(*followed.gone, before, now);
        if (*number >= 0)
            followed.gone.reset();
        return *number >= 0;
    }
    const MediaCollection* const known = before.findCollection(*number);
    if (!known)
        return false; // there is none yet
    const int by = numberBy(*known, before, now, *number, isOther);
    if (by < 0)
        followed.gone = *known;
    return std::exchange(*number, by) != by;
}

} // namespace vantrel
