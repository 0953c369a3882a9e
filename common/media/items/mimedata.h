#pragma once

#include "common/media/items/guimediaitem.h"

#include <QJsonObject>
#include <QList>
#include <QString>

#include <memory>

class QMimeData;

namespace vantrel {

/// Where a drag of media items comes from.
enum class MimeItemCategory { MediaLibrary = 1, Playlist = 2 };

/// The formats of a drag between the media views.
namespace mimeformat {
inline const QString json = QStringLiteral("application/json");         // a compact JSON array of objects
inline const QString category = QStringLiteral("application/category"); // a MimeItemCategory, decimal
inline const QString type = QStringLiteral("application/type");         // a MediaItemType, decimal
} // namespace mimeformat

/// The payload of a drag of items of one type; the caller (as a rule QDrag) takes ownership.
QMimeData* createMimeData(const QList<QJsonObject>& objects, MimeItemCategory category, MediaItemType type);

/// The objects of a payload; empty for anything that is no such payload.
QList<QJsonObject> jsonFromMimeData(const QMimeData* mimeData);

/// The item that one of the payload's objects describes; null when it is of no known type.
std::shared_ptr<GuiMediaItem> mediaItemFromMimeData(const QMimeData* mimeData, const QJsonObject& object);

} // namespace vantrel
