#include "common/views/playlist/playlistdrop.h"

#include "common/media/address/mediautils.h"
#include "common/media/items/entrypayload.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/mimedata.h"
#include "common/media/items/slotmimedata.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMimeData>

namespace vantrel {

using media::MediaUtils;

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("PlaylistDrop", text);
}

QString unreadable()
{
    return translated("What was dropped cannot be read. Drag slots from the media panel or entries from a "
                      "playlist.");
}

} // namespace

PlaylistDrop PlaylistDrop::refused(const QString& fault)
{
    PlaylistDrop nothing;
    nothing.m_fault = fault;
    return nothing;
}

PlaylistDrop PlaylistDrop::read(const QMimeData* data)
{
    if (const auto* own = qobject_cast<const SlotMimeData*>(data)) {
        PlaylistDrop drop;
        drop.m_kind = Kind::Media;
        drop.m_media = own->addresses();
        return drop;
    }
    if (!isMediaPayload(data) || data->data(mimeformat::json).size() > EntryPayload::largest)
        return refused(unreadable());
    const QByteArray type = data->data(mimeformat::type);
    const QJsonDocument document = QJsonDocument::fromJson(data->data(mimeformat::json));
    if (type == "media")
        return refused(translated("Files cannot be put into a playlist. Import them into a collection first, "
                                  "then drag them from there."));
    if (type == "slot" && document.isObject())
        return readSlotNumbers(document.object());
    const QJsonArray objects = document.array();
    PlaylistDrop drop;
    for (const QJsonValue& value : objects) {
        if (!value.isObject() || !drop.add(data, value.toObject()))
            return refused(unreadable());
    }
    return objects.isEmpty() ? refused(unreadable()) : drop;
}

/// The payload of one who drags slots onto slots: numbers of one collection.
PlaylistDrop PlaylistDrop::readSlotNumbers(const QJsonObject& object)
{
    const QJsonValue collection = object.value(QStringLiteral("collection"));
    const QJsonArray numbers = object.value(QStringLiteral("slots")).toArray();
    if (!EntryPayload::isWhole(collection, 0, EntryAddress::maxMajor))
        return refused(translated("The slots that were dropped do not say which collection they are of. Drag "
                                  "them from the media panel."));
    PlaylistDrop drop;
    drop.m_kind = Kind::Media;
    for (const QJsonValue& number : numbers) {
        if (!EntryPayload::isWhole(number, 0, EntryAddress::maxMajor))
            return refused(unreadable());
        drop.m_media.append(MediaAddress(collection.toInt(), number.toInt()));
    }
    return numbers.isEmpty() ? refused(unreadable()) : drop;
}

bool PlaylistDrop::add(const QMimeData* data, const QJsonObject& object)
{
    const std::shared_ptr<GuiMediaItem> item = mediaItemFromMimeData(data, object);
    if (const auto* slot = dynamic_cast<const GuiMediaSlot*>(item.get())) {
        m_kind = Kind::Media;
        m_media.append(slot->address());
        return slot->address().isValid();
    }
    if (const auto* entry = dynamic_cast<const GuiPlaylistEntry*>(item.get()))
        return EntryPayload::isSound(object) && addEntry(*entry, object);
    const auto* playlist = dynamic_cast<const GuiPlaylist*>(item.get());
    if (!playlist || m_kind == Kind::Playlist) // of which a channel plays one
        return false;
    m_kind = Kind::Playlist;
    m_playlist = playlist->number();
    return EntryPayload::isWhole(object.value(QStringLiteral("number")), 1, EntryAddress::maxMajor);
}

bool PlaylistDrop::addEntry(const GuiPlaylistEntry& entry, const QJsonObject& object)
{
    // All of them are of one list, each once.
    if (!m_entries.isEmpty() && entry.playlistNumber() != m_playlist)
        return false;
    const MediaAddress slot = MediaUtils::parseSlotAddress(entry.slotUrl());
    if (!slot.isValid())
        return false;
    m_kind = Kind::Entries;
    m_playlist = entry.playlistNumber();
    m_entries.append(entry);
    m_entries.last().setSlotUrl(MediaUtils::toSlotAddress(slot)); // as the library writes it
    m_records.append(EntryPayload::recordOf(m_entries.last(), object));
    return true;
}

QList<QString> PlaylistDrop::mediaUrls() const
{
    QList<QString> urls;
    for (const MediaAddress& address : m_media)
        urls.append(MediaUtils::toSlotAddress(address));
    return urls;
}

} // namespace vantrel
