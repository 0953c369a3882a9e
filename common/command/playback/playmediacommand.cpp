#include "common/command/playback/playmediacommand.h"

#include "common/command/commandlogging.h"
#include "common/command/playback/playbackpath.h"
#include "common/media/address/mediautils.h"
#include "common/session/mirror/objecttreemodel.h"
#include "common/session/session.h"
#include "tarn/log/log.h"
#include "tarn/qt/variantqt.h"

#include <QCoreApplication>

namespace vantrel {

using media::MediaUtils;

bool PlayMediaCommand::init(bool preview, int channel, int collection, int slot)
{
    return init(preview, channel, MediaUtils::toSlotAddress(collection, slot));
}

bool PlayMediaCommand::init(bool preview, int channel, int playlist, const EntryAddress& entry)
{
    return init(preview, channel, MediaUtils::toPlaylistAddress(playlist, entry));
}

bool PlayMediaCommand::init(bool preview, int channel, const QString& mediaUrl)
{
    setText(QCoreApplication::translate("PlayMediaCommand", "Play media"));
    Object* playback = getObjectForPath(playbackPath(channel, preview));
    if (!playback) {
        Log::write_fmt(LogLevel::Error, {"playmediacommand", "init"}, "command",
                       "Playback object for index '%d' not found", channel);
        return false;
    }
    return InvokeMethodCommand::init(playback, QStringLiteral("playMedia"),
                                     {{"mediaUrl", Variant::from(mediaUrl)}});
}

Object* PlayMediaCommand::getObjectForPath(const QString& path)
{
    const ObjectTreeModel* tree = Session::instance() ? Session::instance()->objectTreeModel() : nullptr;
    Object* object = tree && tree->hasPath(path)
                         ? tree->index(path).data(ObjectTreeModel::ObjectRole).value<Object*>()
                         : nullptr;
    if (!object)
        qCWarning(lcCommand).noquote() << QStringLiteral("No object found for path ") + path;
    return object;
}

} // namespace vantrel
