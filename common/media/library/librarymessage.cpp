#include "common/media/library/librarymessage.h"

#include "common/media/address/medialogging.h"
#include "common/media/library/aside.h"
#include "common/media/library/libraryreading.h"
#include "tarn/media/medialibrary.h"

#include <QtConcurrentRun>

namespace vantrel {

namespace {

/// A server may number its messages: the first operation of the patch tells what the library has become.
std::optional<qint64> revisionOf(const Json& patch)
{
    const Json* first = patch.at(0);
    const Json* revision = first ? first->find("revision") : nullptr;
    return revision && revision->type() == JsonType::Int ? std::optional<qint64>(revision->asInt())
                                                         : std::nullopt;
}

} // namespace

LibraryMessage LibraryMessage::of(const Patch& patch)
{
    LibraryMessage message;
    message.isSound = true;
    message.patch = patch;
    message.changes = LibraryChanges::fromPatch(patch);
    return message;
}

LibraryMessage LibraryMessage::read(const QByteArray& data)
{
    Json json;
    Patch patch;
    std::string error;
    LibraryMessage message;
    if (Json::parseString({data.constData(), static_cast<std::size_t>(data.size())}, json, &error) &&
        Patch::fromJson(json, patch, &error)) {
        message = of(patch);
        message.revision = revisionOf(json);
    } else {
        message.error = shortened(data).toStdString() + ' ' + error;
    }
    message.size = data.size();
    return message;
}

QFuture<LibraryMessage> LibraryMessage::start(const QByteArray& data, const MediaLibrary& library)
{
    return QtConcurrent::run(&aside::pool(), [data, on = makeRef<MediaLibrary>(library)] {
        LibraryMessage message = read(data);
        message.before = on->toJson();
        message.after = makeRef<MediaLibrary>(*on);
        if (!message.isSound || message.after->applyDiff(message.patch) != 0)
            message.after = {};
        if (message.after)
            const MediaLibrary settled(*message.after); // what a first copy costs is paid here
        return message;
    });
}

bool LibraryMessage::apply(MediaLibrary& library) const
{
    if (after && before.sameNode(library.toJson())) {
        library = *after;
        return true;
    }
    std::string why;
    if (library.applyDiff(patch, &why) == 0)
        return true;
    qCDebug(lcMedia) << "Patch does not fit the library: " << shortened(QByteArray::fromStdString(why));
    return false;
}

} // namespace vantrel
