#include "common/media/edit/playlist/newplaylistandmediacommand.h"

#include "common/command/commandlogging.h"
#include "common/media/edit/playlist/listedit.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool NewPlaylistAndMediaCommand::init(const MediaLibrary* library, const QList<QString>& urls, int playlist)
{
    const QString text =
        "New playlist " + QString::number(playlist) + " and media : " + QString::number(urls.size());
    const std::string name = tr("New playlist %1").arg(playlist).toStdString();
    return rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        Playlist added(name);
        const QList<EntryAddress> addresses = addressesOf(added.pickAppendingNumberingPlan(), urls.size());
        if (addresses.size() != urls.size()) {
            qCWarning(lcCommand) << "Failed to create initial address";
            return false;
        }
        for (qsizetype i = 0; i < urls.size(); ++i)
            added.addEntry(addresses[i], newEntry(urls[i]));
        if (copy.addPlaylist(playlist, added))
            return true;
        qCWarning(lcCommand) << "Unable to build redo Patch due failed addPlaylist";
        return false;
    });
}

} // namespace vantrel
