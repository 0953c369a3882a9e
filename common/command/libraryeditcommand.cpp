#include "common/command/libraryeditcommand.h"

#include "common/command/commandlogging.h"
#include "common/session/session.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

namespace {

/// A copy with the edit in it; null where the edit cannot be. The copy shares all that the edit leaves alone.
Ref<MediaLibrary> edited(const MediaLibrary& library, const std::function<bool(MediaLibrary&)>& edit)
{
    const auto copy = makeRef<MediaLibrary>(library);
    return edit(*copy) ? copy : Ref<MediaLibrary>();
}

} // namespace

bool LibraryEditCommand::hasApi() const
{
    const Session* session = Session::instance();
    if (session && session->getMediaLibraryApi())
        return true;
    qCWarning(lcCommand) << "No api available, check connection?";
    return false;
}

bool LibraryEditCommand::rehearse(const MediaLibrary* library, const QString& text, const Edit& edit)
{
    if (!hasApi() || !library)
        return false;
    const Json before = library->toJson();
    const Ref<MediaLibrary> after = edited(*library, edit);
    if (!after)
        return false;
    Patch redoPatch;
    Patch undoPatch;
    Patch::diff(before, after->toJson(), redoPatch, undoPatch);
    setRedoPatch(redoPatch);
    setUndoPatch(undoPatch);
    setText(text);
    setInitialized(true);
    return true;
}

bool LibraryEditCommand::rehearse(const MediaLibrary* library, const QString& text, const Edit& edit,
                                  const Edit& inverse)
{
    if (!hasApi() || !library)
        return false;
    const Json before = library->toJson();
    const Ref<MediaLibrary> after = edited(*library, edit);
    const Ref<MediaLibrary> undone = after ? edited(*after, inverse) : Ref<MediaLibrary>();
    if (!undone)
        return false;
    Patch redoPatch;
    Patch undoPatch;
    Patch::diff(before, after->toJson(), redoPatch);
    Patch::diff(after->toJson(), undone->toJson(), undoPatch);
    setRedoPatch(redoPatch);
    setUndoPatch(undoPatch);
    setText(text);
    setInitialized(true);
    return true;
}

} // namespace vantrel
