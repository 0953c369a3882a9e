#pragma once

#include "common/media/items/guimediaitem.h"

#include <QJsonObject>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

class QMimeData;

namespace vantrel {

/// Where a drag of media items comes from.
enum class MimeItemCategory { MediaLibrary = 1, Playlist = 2 };

/// The formats of a drag between the media views.
namespace mimeformat {
inline const QString json = QStringLiteral("application/json");         // a compact JSON array of objects
inline const QString category = QStringLiteral("application/category"); // a MimeItemCategory, decimal
inline const QString type = QStringLiteral("application/type");         // a MediaItemType, decimal, or a text
// The two texts that a slot takes: slots of the library, and files.
inline const QString slotType = QStringLiteral("slot");
inline const QString mediaType = QStringLiteral("media");
} // namespace mimeformat

/// The payload of a drag of items of one type; the caller (as a rule QDrag) takes ownership.
QMimeData* createMimeData(const QList<QJsonObject>& objects, MimeItemCategory category, MediaItemType type);
/// What stands in it as JSON.
QByteArray writtenObjects(const QList<QJsonObject>& objects);

/// Whether the formats are there that say what is dragged, and of which kind.
bool isMediaPayload(const QMimeData* mimeData);
/// The objects of a payload; empty for anything that is no such payload.
QList<QJsonObject> jsonFromMimeData(const QMimeData* mimeData);

/// Of the payload's items, told by its number; a slot by its text as well. Nothing for anything else.
std::optional<MediaItemType> mediaItemTypeOf(const QMimeData* mimeData);
/// The item that one of the payload's objects describes; null when it is of no known type.
std::shared_ptr<GuiMediaItem> mediaItemFromMimeData(const QMimeData* mimeData, const QJsonObject& object);

} // namespace vantrel
