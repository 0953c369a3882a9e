// What an operator's edit costs before it goes out: the whole of a command's init(), rehearsal and both
// patches, and the bytes of the request. The peer does it with plain values: serialise, copy, edit,
// serialise, diff both ways, and write the patch out.
#include "bench/json_library.h"
#include "common/media/edit/slot/renameslotcommand.h"
#include "common/media/library/medialibraryapi.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"

#include <QCoreApplication>

#include <functional>
#include <map>

using namespace vantrel;
using namespace vantrel::bench;

namespace {

constexpr int cleared = 200; // entries of the playlist that is cleared

/// Commands need a connection only to send what they made.
template <typename Base>
class Unconnected : public Base
{
protected:
    bool hasApi() const override { return true; }
};

class EndActionCommand : public LibraryEditCommand
{
public:
    bool init(const MediaLibrary* library, int playlist, const EntryAddress& address, EndAction action)
    {
        const PlaylistEntry* present = library->findPlaylistEntry(playlist, address);
        if (!present)
            return false;
        const auto setTo = [&](EndAction value) {
            return [=](MediaLibrary& copy) {
                copy.findPlaylistEntry(playlist, address)->setEndAction(value);
                return true;
            };
        };
        return rehearse(library, "End action", setTo(action), setTo(present->getEndAction()));
    }
};

class ClearCommand : public LibraryEditCommand
{
public:
    bool init(const MediaLibrary* library, int playlist)
    {
        const Playlist* present = library->findPlaylist(playlist);
        if (!present)
            return false;
        const Playlist full = *present;
        return rehearse(
            library, "Clear",
            [&](MediaLibrary& copy) {
                Playlist* target = copy.findPlaylist(playlist);
                for (const auto& [address, entry] : full.getEntries())
                    target->removeEntry(address);
                return true;
            },
            [&](MediaLibrary& copy) {
                Playlist* target = copy.findPlaylist(playlist);
                for (const auto& [address, entry] : full.getEntries())
                    target->addEntry(address, entry);
                return true;
            });
    }
};

/// One kind of edit as a command and as the peer writes it, on the i-th thing of its kind.
struct Edit
{
    std::string name;
    int count;      // edits in a run
    int operations; // of the patch
    std::function<bool(const MediaLibrary&, int i, Patch& redo)> ours;
    std::function<void(nlohmann::json&)> theirs;
    double goal; // times as fast at 100,000 slots
};

std::vector<Edit> edits(const LibraryShape& shape)
{
    const int middle = shape.slots / 2;
    const int playlists = std::max(1, shape.slots / 5 / shape.perPlaylist);
    return {
        {"slot-edit", 2000, 1,
         [shape](const MediaLibrary& library, int i, Patch& redo) {
             const int slot = static_cast<int>(static_cast<unsigned>(i) * 7919U) % shape.slots;
             Unconnected<RenameSlotCommand> command;
             const bool made = command.init(&library, shape.collectionOf(slot), shape.placeOf(slot),
                                            QStringLiteral("Renamed %1").arg(i));
             redo = command.redoPatch();
             return made && command.undoPatch().size() == 1;
         },
         [shape, middle](nlohmann::json& library) {
             auto& slots = library["collections"][std::to_string(shape.collectionOf(middle))]["slots"];
             slots[std::to_string(shape.placeOf(middle))]["name"] = "Renamed 1";
         },
         5000},
        {"entry-edit", 2000, 1,
         [playlists](const MediaLibrary& library, int i, Patch& redo) {
             Unconnected<EndActionCommand> command;
             const bool made = command.init(&library, i % playlists + 1, EntryAddress(1, 0), EndAction::GoTo);
             redo = command.redoPatch();
             return made && command.undoPatch().size() == 1;
         },
         [](nlohmann::json& library) { library["playlists"]["1"]["entries"]["1"]["endAction"] = "goTo"; },
         5000},
        {"playlist-clear-200", 50, cleared,
         [playlists](const MediaLibrary& library, int i, Patch& redo) {
             Unconnected<ClearCommand> command;
             const bool made = command.init(&library, i % playlists + 1);
             redo = command.redoPatch();
             return made && command.undoPatch().size() == cleared;
         },
         [](nlohmann::json& library) { library["playlists"]["1"]["entries"].clear(); }, 5000.0 / cleared},
    };
}

/// Seconds for one edit; negative when a command did not make what it should.
double ourCost(const MediaLibrary& library, const Edit& edit)
{
    bool good = true;
    const double seconds = bestOf(3, [&] {
        for (int i = 0; i < edit.count; ++i) {
            Patch redo;
            good = edit.ours(library, i, redo) && good;
            QByteArray body;
            good = MediaLibraryApi::patchBody(redo, &body) && !body.isEmpty() && good;
            good = good && static_cast<int>(redo.size()) == edit.operations;
        }
    });
    return good ? seconds / edit.count : -1;
}

double theirCost(const nlohmann::json& library, const Edit& edit, bool large)
{
    std::size_t bytes = 0;
    const double seconds = bestOf(large ? 1 : 3, [&] {
        const nlohmann::json before = library;
        nlohmann::json copy = library;
        edit.theirs(copy);
        const nlohmann::json after = copy;
        bytes = nlohmann::json::diff(before, after).dump().size();
        bytes += nlohmann::json::diff(after, before).size();
    });
    return bytes > 2 ? seconds : -1;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    std::map<std::string, double> small; // cost at 1,000 slots
    for (const int perCollection : {100, 5000}) {
        for (const int slots : {1000, 10000, 100000}) {
            const LibraryShape shape{slots, perCollection, cleared};
            const std::string text = LibraryText(shape).make();
            Json json;
            MediaLibrary library;
            std::string error;
            if (!Json::parseString(text, json, &error) || !library.parseJson(json, &error)) {
                std::fprintf(stderr, "%s\n", error.c_str());
                return 1;
            }
            const nlohmann::json plain = nlohmann::json::parse(text);
            for (const Edit& edit : edits(shape)) {
                const std::string key = edit.name + std::to_string(perCollection);
                const double ours = ourCost(library, edit);
                const double theirs = theirCost(plain, edit, slots == 100000);
                if (ours < 0 || theirs < 0) {
                    std::fprintf(stderr, "%s made no patch of its size\n", edit.name.c_str());
                    return 1;
                }
                report("library/" + edit.name + "/" + shape.suffix(), "nlohmann::json", ours * 1e6,
                       theirs * 1e6, "us", theirs / ours,
                       slots == 100000 ? edit.goal : edit.goal * slots / 100000);
                if (slots == 1000)
                    small[key] = ours;
                if (slots == 100000)
                    report("library/" + edit.name + "-growth/" + shape.suffix(),
                           "1,000 slots, of which 5 times the cost is allowed", ours * 1e6, small[key] * 5e6,
                           "us", small[key] * 5 / ours, 1);
            }
        }
    }
    return 0;
}
