#pragma once

#include "common/media/address/mediautils.h"
#include "common/media/edit/playlist/addplaylistcommand.h"
#include "common/media/edit/playlist/removeplaylistcommand.h"
#include "common/media/edit/playlist/renameplaylistcommand.h"
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

/// Edits entries by hand of the library.
class EntryCommand : public LibraryEditCommand
{
public:
    bool init(const MediaLibrary* library, const Edit& edit)
    {
        return rehearse(library, QStringLiteral("entry"), edit);
    }
};

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
        switch (below(16)) {
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
        case 10:
            return make<RenameSlotCommand>(library, collection, slot, name());
        case 11:
            return make<AddPlaylistCommand>(library, 1 + below(4), name());
        case 12:
            return below(4) ? nullptr : make<RemovePlaylistCommand>(library, 1 + below(4));
        case 13:
            return make<RenamePlaylistCommand>(library, 1 + below(4), name());
        default:
            return entryEdit(library, url.toStdString());
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

    CommandPtr entryEdit(const MediaLibrary* library, const std::string& slotUrl)
    {
        const int kind = below(5);
        const int playlist = 1 + below(4);
        const EntryAddress at(1 + below(10), below(3));
        const PlaylistEntry entry(slotUrl, EndAction(below(4)), TakeTransitionType(below(3)), below(9));
        return make<EntryCommand>(library, [=](MediaLibrary& copy) {
            Playlist* list = copy.findPlaylist(playlist);
            if (!list)
                return false;
            if (kind == 0)
                return list->removeEntry(at);
            if (kind == 1)
                return list->moveEntry(at, {at.major + 1, 0});
            return kind == 2 ? list->replaceEntry(at, entry) : list->addEntry(at, entry);
        });
    }

    QRandomGenerator m_random;
    QString m_mark;
};

} // namespace vantrel::test
