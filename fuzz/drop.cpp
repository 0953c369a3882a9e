// What a drag or the clipboard brings to a playlist: whatever it says it is, either all of it is sound or
// nothing of it counts, and what was believed once is believed again when it is dragged on.
#include "common/media/items/mimedata.h"
#include "common/views/playlist/playlistdrop.h"

#include <QJsonObject>
#include <QMimeData>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>

using namespace vantrel;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

bool isSound(const GuiPlaylistEntry& entry)
{
    return entry.address().isValid() && entry.transitionDuration() >= 0 &&
           entry.transitionDuration() <= 3600 && entry.slotUrl().startsWith(QStringLiteral("brume://"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static constexpr std::array types{"1", "2", "3", "4", "slot", "media", "-1", "x"};
    if (size == 0)
        return 0;
    QMimeData payload;
    payload.setData(mimeformat::type, types[data[0] % types.size()]);
    payload.setData(mimeformat::json,
                    QByteArray(reinterpret_cast<const char*>(data) + 1, qsizetype(size) - 1));
    const PlaylistDrop drop = PlaylistDrop::read(&payload);
    using Kind = PlaylistDrop::Kind;
    require(drop.fault().isEmpty() == (drop.kind() != Kind::Nothing));
    require(drop.entries().isEmpty() == (drop.kind() != Kind::Entries));
    require(drop.media().isEmpty() == (drop.kind() != Kind::Media));
    if (drop.kind() == Kind::Playlist)
        require(drop.playlist() > 0);
    for (const MediaAddress& slot : drop.media())
        require(slot.isValid());
    QList<QJsonObject> objects;
    for (const GuiPlaylistEntry& entry : drop.entries()) {
        require(isSound(entry) && entry.playlistNumber() == drop.playlist());
        objects.append(entry.toJson());
    }
    if (objects.isEmpty())
        return 0;
    const std::unique_ptr<QMimeData> again(
        createMimeData(objects, MimeItemCategory::Playlist, MediaItemType::PlaylistEntry));
    require(PlaylistDrop::read(again.get()).entries().size() == objects.size());
    return 0;
}
