#include "common/media/edit/playlist/renumberplaylistcommand.h"

#include "common/command/commandlogging.h"
#include "common/media/edit/playlist/listedit.h"
#include "tarn/media/medialibrary.h"

#include <memory>

namespace vantrel {

RenumberPlaylistCommand::Outcome RenumberPlaylistCommand::renumber(Playlist& list, const EntryAddress& first,
                                                                   const QList<EntryAddress>& addresses)
{
    QList<PlaylistEntry> kept;
    for (const EntryAddress& address : addresses) {
        const PlaylistEntry* entry = std::as_const(list).findEntry(address);
        if (!entry) {
            qCWarning(lcCommand).noquote()
                << QStringLiteral("Failed to find ") + QString::fromStdString(address.toString(true));
            return Outcome::NoEntry;
        }
        kept.append(*entry);
        if (!list.removeEntry(address)) {
            qCWarning(lcCommand) << "Unable to build redo Patch due failed removeEntry";
            return Outcome::NoEntry;
        }
    }
    if (kept.isEmpty())
        return Outcome::NoEntry;
    if (!list.addEntry(first, kept.takeFirst())) {
        qCWarning(lcCommand) << "Failed to add entry back to playlist";
        return Outcome::NoRoom;
    }
    const auto others = static_cast<int>(kept.size());
    const QList<EntryAddress> places =
        others > 0 ? addressesOf(list.pickAppendingNumberingPlan(first, others), others)
                   : QList<EntryAddress>();
    if (places.size() != others) {
        qCWarning(lcCommand) << "Unable to acquire valid numbering plan for renumbering";
        return Outcome::NoRoom;
    }
    for (qsizetype i = 0; i < places.size(); ++i)
        list.addEntry(places[i], kept[i]);
    return Outcome::Done;
}

bool RenumberPlaylistCommand::init(const MediaLibrary* library, int playlist, const EntryAddress& first,
                                   const QList<EntryAddress>& addresses)
{
    // A later rehearsal may outlive the command.
    const auto outcome = std::make_shared<Outcome>(Outcome::NoPlaylist);
    const QString text = "Renumber playlist " + QString::number(playlist);
    const bool isDone = rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        Playlist* list = findListOrWarn(copy, playlist, "Cannot find playlist");
        if (list)
            *outcome = renumber(*list, first, addresses);
        return list && *outcome == Outcome::Done;
    });
    m_outcome = *outcome;
    return isDone;
}

} // namespace vantrel
