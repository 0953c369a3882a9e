#include "common/command/libraryeditcommand.h"

#include "common/command/commandlogging.h"
#include "common/command/refusal.h"
#include "common/media/library/aside.h"
#include "common/media/library/medialibraryapi.h"
#include "common/session/session.h"
#include "tarn/media/medialibrary.h"

#include <QtConcurrentRun>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace vantrel {

namespace {

// What the server finds out from a slot's medium, whenever it is ready: no edit of anybody.
constexpr std::array<std::string_view, 3> foundMembers{"isPlayable", "mediaDuration", "type"};

/// A copy with the edit in it; null where the edit cannot be. The copy shares all that the edit leaves alone.
Ref<MediaLibrary> edited(const MediaLibrary& library, const std::function<bool(MediaLibrary&)>& edit)
{
    const auto copy = makeRef<MediaLibrary>(library);
    return edit(*copy) ? copy : Ref<MediaLibrary>();
}

// What a record is of: with another one in it, it is another record.
constexpr std::array<std::string_view, 2> identities{"slotUrl", "contentUrl"};
constexpr std::size_t recordDepth = 4; // "/playlists/1/entries/2", "/collections/1/slots/2"

bool isBefore(PathView a, PathView b)
{
    return std::ranges::lexicographical_compare(a, b, {}, &PathElement::text, &PathElement::text);
}

/// The lists and collections in which a patch puts records elsewhere, adds or takes away some; sorted.
std::vector<PathView> rearrangedBy(const Patch& patch)
{
    std::vector<PathView> containers;
    for (const PatchOp& op : patch) {
        const bool isOther = op.path.size() == recordDepth + 1 &&
                             std::ranges::find(identities, op.path.back().text()) != identities.end();
        if (!isOther && op.path.size() != recordDepth)
            continue;
        const PathView container = PathView(op.path).first(recordDepth - 1);
        if (containers.empty() || !(containers.back() == container))
            containers.push_back(container);
    }
    std::ranges::sort(containers, isBefore);
    return containers;
}

/// What a patch was made on. It tells only what differs: where it moves records, one whose settings happen to
/// be those of another keeps them where it stands, and so would what somebody has set since. There it is
/// whole records that count.
PatchBase baseOf(const Json& document, const Patch& patch)
{
    const std::vector<PathView> rearranged = rearrangedBy(patch);
    return {document, patch, foundMembers, [&](PathView path) {
                const bool isIn =
                    path.size() >= recordDepth &&
                    std::ranges::binary_search(rearranged, path.first(recordDepth - 1), isBefore);
                return isIn ? path.first(recordDepth) : path;
            }};
}

/// Both ways of an edit. Without an inverse of its own it is taken back as it was done.
bool rehearsed(const MediaLibrary& library, const std::function<bool(MediaLibrary&)>& edit,
               const std::function<bool(MediaLibrary&)>& inverse, MadeEdit& made)
{
    const Ref<MediaLibrary> after = edited(library, edit);
    const Ref<MediaLibrary> undone = after && inverse ? edited(*after, inverse) : Ref<MediaLibrary>();
    if (!after || (inverse && !undone))
        return false;
    const Json before = library.toJson();
    const Json done = after->toJson();
    if (undone) {
        Patch::diff(before, done, made.redo);
        Patch::diff(done, undone->toJson(), made.undo);
    } else {
        Patch::diff(before, done, made.redo, made.undo);
    }
    made.before = DeferredBase([before](const Patch& patch) { return baseOf(before, patch); });
    made.after = DeferredBase([done](const Patch& patch) { return baseOf(done, patch); });
    made.document = before;
    made.made = after;
    return true;
}

MediaLibraryApi* sessionApi()
{
    return Session::instance() ? Session::instance()->getMediaLibraryApi() : nullptr;
}

/// Of the session's library, what it will be with the edits that are under way; null for any other one.
Ref<const MediaLibrary> expectedOf(const MediaLibrary* library)
{
    const MediaLibraryApi* api = sessionApi();
    return api && library == &api->library() ? api->expectedLibrary() : nullptr;
}

/// An edit of a library that nobody has seen would be an edit of something else. Says so when it is not
/// there.
bool isLibraryRead(const QString& text)
{
    const MediaLibraryApi* api = sessionApi();
    if (!api || api->reading() == MediaLibraryApi::Reading::Done)
        return true;
    const bool failed = api->reading() == MediaLibraryApi::Reading::Failed;
    tellNotDone(text, failed
                          ? QObject::tr("The library could not be read from the server; it is tried again.")
                          : QObject::tr("The library is still being read from the server."));
    return false;
}

} // namespace

bool LibraryEditCommand::hasApi() const
{
    return hasApiOrWarns("No api available, check connection?");
}

bool LibraryEditCommand::hasApiOrWarns(const char* warning) const
{
    if (sessionApi())
        return true;
    qCWarning(lcCommand) << warning;
    return false;
}

bool LibraryEditCommand::rehearse(const MediaLibrary* library, const QString& text, const Edit& edit)
{
    return rehearse(library, text, edit, nullptr);
}

bool LibraryEditCommand::rehearse(const MediaLibrary* library, const QString& text, const Edit& edit,
                                  const Edit& inverse)
{
    const Ref<const MediaLibrary> on = libraryFor(library, text);
    LibraryEdit made;
    made.rehearse = [edit, inverse](MadeEdit& anew, const MediaLibrary& other) {
        return rehearsed(other, edit, inverse, anew);
    };
    if (!on || !made.rehearse(made, *on))
        return false;
    take(std::move(made), text);
    return true;
}

bool LibraryEditCommand::rehearseMany(const MediaLibrary* library, const QString& text, qsizetype records,
                                      const Fits& fits, const Edit& edit)
{
    constexpr qsizetype few = 200;
    const Edit whole = [fits, edit](MediaLibrary& copy) { return fits(copy) && edit(copy); };
    if (records <= few)
        return rehearse(library, text, whole);
    const Ref<const MediaLibrary> on = libraryFor(library, text);
    if (!on || !fits(*on))
        return false;
    LibraryEdit made;
    made.rehearse = [whole](MadeEdit& anew, const MediaLibrary& other) {
        return rehearsed(other, whole, nullptr, anew);
    };
    made.making =
        QtConcurrent::run(&aside::edits(), [rehearse = made.rehearse, copy = makeRef<MediaLibrary>(*on)] {
            MadeEdit anew;
            if (rehearse(anew, *copy))
                anew.lookUpBases();
            return anew;
        });
    take(std::move(made), text);
    return true;
}

/// The library to rehearse on; null where nothing can be edited now, which the operator is told.
Ref<const MediaLibrary> LibraryEditCommand::libraryFor(const MediaLibrary* library, const QString& text)
{
    if (!hasApi()) {
        tellNotDone(text, tr("There is no connection to the server."));
        return {};
    }
    if (!library || !isLibraryRead(text))
        return {};
    m_wasRehearsed = true;
    const Ref<const MediaLibrary> expected = expectedOf(library);
    return expected ? expected : Ref<const MediaLibrary>(makeRef<MediaLibrary>(*library));
}

void LibraryEditCommand::take(LibraryEdit edit, const QString& text)
{
    setEdit(std::move(edit));
    setText(text);
    setInitialized(true);
}

} // namespace vantrel
