#include "common/command/libraryeditcommand.h"

#include "common/command/commandlogging.h"
#include "common/session/session.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

namespace {

/// The document after the edit, made on a copy of the document before it.
bool edited(const Json& before, const std::function<bool(MediaLibrary&)>& edit, Json& after)
{
    const auto copy = makeRef<MediaLibrary>();
    std::string error;
    if (!copy->parseJson(before, &error)) {
        qCWarning(lcCommand) << "Failed to copy the media library:" << error.c_str();
        return false;
    }
    if (!edit(*copy))
        return false;
    after = copy->toJson();
    return true;
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
    Json after;
    if (!edited(before, edit, after))
        return false;
    Patch redoPatch;
    Patch undoPatch;
    Patch::diff(before, after, redoPatch, undoPatch);
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
    Json after;
    Json undone;
    if (!edited(before, edit, after) || !edited(after, inverse, undone))
        return false;
    Patch redoPatch;
    Patch undoPatch;
    Patch::diff(before, after, redoPatch);
    Patch::diff(after, undone, undoPatch);
    setRedoPatch(redoPatch);
    setUndoPatch(undoPatch);
    setText(text);
    setInitialized(true);
    return true;
}

} // namespace vantrel
