#pragma once

#include "common/media/address/mediautils.h"
#include "common/media/edit/playlist/addmediatoplaylistcommand.h"
#include "common/media/edit/playlist/addplaylistcommand.h"
#include "common/media/edit/playlist/appendplaylistentriescommand.h"
#include "common/media/edit/playlist/clearplaylistcommand.h"
#include "common/media/edit/playlist/dragplaylistentriescommand.h"
#include "common/media/edit/playlist/editplaylistentrycommand.h"
#include "common/media/edit/playlist/importplaylistcommand.h"
#include "common/media/edit/playlist/moveplaylistcommand.h"
#include "common/media/edit/playlist/moveplaylistentriescommand.h"
#include "common/media/edit/playlist/newplaylistandmediacommand.h"
#include "common/media/edit/playlist/pasteplaylistentriescommand.h"
#include "common/media/edit/playlist/removeplaylistcommand.h"
#include "common/media/edit/playlist/removeplaylistentrycommand.h"
#include "common/media/edit/playlist/renameplaylistcommand.h"
#include "common/media/edit/playlist/renumberplaylistcommand.h"
#include "common/media/edit/playlist/replaceplaylistentrycommand.h"
#include "common/media/edit/slot/addmediatocollectioncommand.h"
#include "common/media/edit/slot/clearslotfromcollectioncommand.h"
#include "common/media/edit/slot/copycollectioncommand.h"
#include "common/media/edit/slot/editslotscalingcommand.h"
#include "common/media/edit/slot/insertcollectioncommand.h"
#include "common/media/edit/slot/moveslotincollectioncommand.h"
#include "common/media/edit/slot/removecollectioncommand.h"
#include "common/media/edit/slot/renamecollectioncommand.h"
#include "common/media/edit/slot/renameslotcommand.h"
#include "common/media/edit/slot/setinpointcommand.h"
#include "common/media/edit/slot/setoutpointcommand.h"
#include "common/media/items/guimediaslot.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playlistentry.h"

#include <QRandomGenerator>
#include <QStringList>
#include <QUrl>

#include <memory>

namespace vantrel::test {

using CommandPtr = std::unique_ptr<LibraryEditCommand>;

/// The session would send a command to the one window of this process: here each has its own client.
template <typename Command>
class Loose : public Command
{
protected:
    bool hasApi() const override { return true; }
};

template <typename Command, typename... Args>
CommandPtr make(const MediaLibrary* library, Args&&... args)
{
    auto command = std::make_unique<Loose<Command>>();
    return command->init(library, std::forward<Args>(args)...) ? CommandPtr(std::move(command)) : nullptr;
}

/// The list in which entries are added and moved about, and never removed but by undo: what an operator was
/// told is there has to be there in the end.
inline constexpr int keptList = 9;

/// An operator's random next step, from what the own window shows.
class Operator
{
public:
    explicit Operator(quint32 seed)
        : m_random(seed)
    {
    }

    int below(int bound) { return m_random.bounded(bound); }

    /// The names that the next steps give end with it.
    void setMark(const QString& mark) { m_mark = mark; }

    CommandPtr next(const MediaLibrary* library)
    {
        const int collection = 1 + below(6);
        const int slot = 1 + below(12);
        const QString url = media::MediaUtils::toSlotAddress(collection, slot);
        if (below(2))
            return below(3) ? listEdit(library, 1 + below(4)) : keptEdit(library);
        switch (below(11)) {
        case 0:
            return make<InsertCollectionCommand>(library, collection, name());
        case 1:
            return below(3) ? nullptr : make<RemoveCollectionCommand>(library, collection);
        case 2:
            return make<CopyCollectionCommand>(library, collection, 1 + below(6));
        case 3:
            return make<RenameCollectionCommand>(library, collection, name());
        case 4:
        case 5:
            return make<AddMediaToCollectionCommand>(library, collection, slot, medias());
        case 6:
            return make<ClearSlotFromCollectionCommand>(library, collection, slot);
        case 7:
            return make<MoveSlotInCollectionCommand>(library, collection, slot, 1 + below(12));
        case 8:
            return make<SetInpointCommand>(library, url, below(1000) / 7.0);
        case 9:
            return make<SetOutpointCommand>(library, url,
                                            below(2) ? std::optional(below(1000) / 3.0) : std::nullopt);
        default:
            return make<RenameSlotCommand>(library, collection, slot, name());
        }
    }

private:
    QString name()
    {
        static const QStringList words{QStringLiteral("loop"),         QStringLiteral("a  b   c"),
                                       QStringLiteral("\"quoted\\\""), QStringLiteral("夜景 \u00a0x"),
                                       QStringLiteral("data: x\n\ny"), QStringLiteral("tab\t end ")};
        return words[below(int(words.size()))] + QString::number(below(1000)) + m_mark;
    }

    QList<GuiMediaSlot> medias()
    {
        QList<GuiMediaSlot> list(1 + below(3));
        for (GuiMediaSlot& slot : list) {
            slot.setName(name());
            slot.setContentUrl(QUrl(QStringLiteral("file:///clips/%1.mp4").arg(below(50))));
            slot.setDuration(below(500));
        }
        return list;
    }

    /// URLs of no slot, which carry the mark.
    QStringList markedUrls()
    {
        QStringList urls;
        for (int i = 0; i <= below(3); ++i)
            urls.append(QStringLiteral("brume://%1/%2").arg(m_mark).arg(i));
        return urls;
    }

    QList<PlaylistEntry> entries(const QStringList& urls)
    {
        QList<PlaylistEntry> list;
        for (const QString& url : urls)
            list.append(
                {url.toStdString(), EndAction(below(4)), TakeTransitionType(below(3)), below(9) / 2.0});
        return list;
    }

    static QList<EntryAddress> addressesOf(const Playlist& list)
    {
        QList<EntryAddress> all;
        for (const auto& [address, entry] : list.getEntries())
            all.append(address);
        return all;
    }

    /// Some that stand in the list, in its order, and now and then one that does not.
    QList<EntryAddress> some(const QList<EntryAddress>& all)
    {
        QList<EntryAddress> chosen;
        for (const EntryAddress& address : all) {
            if (chosen.size() < 4 && below(int(all.size())) < 3)
                chosen.append(address);
        }
        if (chosen.isEmpty() && below(2))
            chosen.append(anywhere());
        return chosen;
    }
    EntryAddress oneOf(const QList<EntryAddress>& all)
    {
        return all.isEmpty() || below(12) == 0 ? anywhere() : all[below(int(all.size()))];
    }
    EntryAddress anywhere() { return {below(12), 1 + below(3)}; }

    /// Only what leaves every entry there.
    CommandPtr keptEdit(const MediaLibrary* library)
    {
        using Mode = AddMediaToPlaylistCommand::AddMode;
        const Playlist* list = library->findPlaylist(keptList);
        if (!list)
            return nullptr;
        const QList<EntryAddress> all = addressesOf(*list);
        const Mode mode = below(3) == 0 ? Mode::AtEnd : below(2) ? Mode::Before : Mode::After;
        switch (all.size() < 12 ? below(2) : below(8)) {
        case 0:
            return make<AddMediaToPlaylistCommand>(library, keptList, mode, oneOf(all), markedUrls());
        case 1:
            return make<PastePlaylistEntriesCommand>(library, keptList, mode, oneOf(all),
                                                     entries(markedUrls()));
        default:
            return rearrange(library, keptList, all);
        }
    }

    CommandPtr rearrange(const MediaLibrary* library, int playlist, const QList<EntryAddress>& all)
    {
        const double seconds = below(90) / 10.0;
        switch (below(6)) {
        case 0:
            return make<MovePlaylistEntriesCommand>(library, playlist, some(all), oneOf(all));
        case 1:
            return make<DragPlaylistEntriesCommand>(library, playlist, some(all),
                                                    below(6) ? oneOf(all) : EntryAddress());
        case 2:
            return make<AppendPlaylistEntriesCommand>(library, playlist, some(all));
        case 3:
            return make<RenumberPlaylistCommand>(library, playlist, oneOf(all), some(all));
        case 4: // as a whole, which makes room
            return all.isEmpty()
                       ? nullptr
                       : make<RenumberPlaylistCommand>(library, playlist, EntryAddress(1 + below(5), 0), all);
        default:
            return make<EditPlaylistEntryCommand>(library, playlist, some(all), [=](PlaylistEntry& entry) {
                entry.setTransitionDuration(seconds);
            });
        }
    }

    CommandPtr listEdit(const MediaLibrary* library, int playlist)
    {
        using Mode = AddMediaToPlaylistCommand::AddMode;
        const Playlist* list = library->findPlaylist(playlist);
        if (!list)
            return below(2) ? make<AddPlaylistCommand>(library, playlist, name())
                            : make<NewPlaylistAndMediaCommand>(library, markedUrls(), playlist);
        const QList<EntryAddress> all = addressesOf(*list);
        switch (below(14)) {
        case 0:
        case 1:
            return make<AddMediaToPlaylistCommand>(library, playlist, Mode(below(4)), oneOf(all),
                                                   markedUrls());
        case 2:
            return make<PastePlaylistEntriesCommand>(library, playlist, Mode(below(4)), oneOf(all),
                                                     entries(markedUrls()));
        case 3:
        case 4:
            return make<ReplacePlaylistEntryCommand>(library, playlist, some(all), oneOf(all));
        case 5:
            return make<RemovePlaylistEntryCommand>(library, playlist, some(all));
        case 6:
            return make<RenamePlaylistCommand>(library, playlist, name());
        case 7:
            return below(3) ? nullptr : make<ClearPlaylistCommand>(library, playlist);
        case 8:
            return below(3) ? nullptr : make<RemovePlaylistCommand>(library, playlist);
        case 9:
            return make<MovePlaylistCommand>(library, playlist, 1 + below(4));
        case 10: {
            const QList<PlaylistEntry> records = entries(markedUrls());
            ImportPlaylistCommand::Entries table;
            for (qsizetype i = 0; i < records.size(); ++i)
                table.emplaceBack(EntryAddress(1 + int(i), below(3)), records[i]);
            return make<ImportPlaylistCommand>(library, playlist, name(), table);
        }
        default:
            return rearrange(library, playlist, all);
        }
    }

    QRandomGenerator m_random;
    QString m_mark;
};

} // namespace vantrel::test
