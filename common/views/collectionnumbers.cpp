#include "common/views/collectionnumbers.h"

#include "common/media/library/editqueue.h"
#include "common/media/library/medialibraryapi.h"
#include "common/session/session.h"
#include "tarn/media/medialibrary.h"

#include <algorithm>

namespace vantrel {

namespace {

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
        if (number != otherNumber || slot.getUrl() != otherSlot.getUrl())
            return false;
        ++other;
    }
    return true;
}

/// The number by now of what had this one; the same where it is gone.
int numberBy(const MediaLibrary& before, const MediaLibrary& now, int number)
{
    const MediaCollection* const known = before.findCollection(number);
    if (!known || isSame(known, now.findCollection(number)))
        return number;
    for (const auto& [other, collection] : now.getCollections()) {
        if (isSame(known, &collection) && !isSame(known, before.findCollection(other)))
            return other;
    }
    return number;
}

} // namespace

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
    connect(api, &MediaLibraryApi::mediaLibraryReplaced, this, &CollectionNumbers::look);
    connect(api, &MediaLibraryApi::changesFinished, this, &CollectionNumbers::look);
    connect(api->edits(), &EditQueue::submitted, this, &CollectionNumbers::look);
    connect(api->edits(), &EditQueue::dropped, this, &CollectionNumbers::look);
}

/// With the edits that are under way; a copy, since the library itself goes on.
Ref<const MediaLibrary> CollectionNumbers::expected() const
{
    const MediaLibraryApi* const api = m_session ? m_session->getMediaLibraryApi() : nullptr;
    return api ? makeRef<MediaLibrary>(*api->expectedLibrary()) : Ref<MediaLibrary>();
}

CollectionNumbers::Number CollectionNumbers::follow(int collection)
{
    look();
    for (const std::weak_ptr<int>& followed : m_followed) {
        if (const auto number = followed.lock(); number && *number == collection)
            return number;
    }
    const auto number = std::make_shared<int>(collection);
    m_followed.push_back(number);
    if (!m_known)
        m_known = expected();
    return number;
}

void CollectionNumbers::look()
{
    std::erase_if(m_followed, [](const std::weak_ptr<int>& followed) { return followed.expired(); });
    if (m_followed.empty()) {
        m_known = {};
        return;
    }
    const Ref<const MediaLibrary> now = expected();
    if (!now)
        return;
    const Ref<const MediaLibrary> before = std::exchange(m_known, now);
    bool isChanged = false;
    for (const std::weak_ptr<int>& followed : m_followed) {
        const auto number = followed.lock();
        const int by = number && before ? numberBy(*before, *now, *number) : -1;
        if (by < 0 || by == *number)
            continue;
        *number = by;
        isChanged = true;
    }
    if (isChanged)
        Q_EMIT changed();
}

} // namespace vantrel
