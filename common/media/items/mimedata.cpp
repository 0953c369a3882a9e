#include "common/media/items/mimedata.h"

#include "common/media/items/guimediaitemfactory.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMimeData>

namespace vantrel {

QByteArray writtenObjects(const QList<QJsonObject>& objects)
{
    QJsonArray array;
    for (const QJsonObject& object : objects)
        array.append(object);
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

QMimeData* createMimeData(const QList<QJsonObject>& objects, MimeItemCategory category, MediaItemType type)
{
    auto* data = new QMimeData;
    data->setData(mimeformat::json, writtenObjects(objects));
    data->setData(mimeformat::category, QByteArray::number(static_cast<int>(category)));
    data->setData(mimeformat::type, QByteArray::number(static_cast<int>(type)));
    return data;
}

bool isMediaPayload(const QMimeData* mimeData)
{
    return mimeData && mimeData->hasFormat(mimeformat::json) && mimeData->hasFormat(mimeformat::type);
}

QList<QJsonObject> jsonFromMimeData(const QMimeData* mimeData)
{
    QList<QJsonObject> objects;
    if (!mimeData)
        return objects;
    const QJsonArray array = QJsonDocument::fromJson(mimeData->data(mimeformat::json)).array();
    for (const QJsonValue& value : array) {
        if (value.isObject())
            objects.append(value.toObject());
    }
    return objects;
}

std::optional<MediaItemType> mediaItemTypeOf(const QMimeData* mimeData)
{
    const QByteArray text = mimeData ? mimeData->data(mimeformat::type) : QByteArray();
    if (text == mimeformat::slotType.toLatin1())
        return MediaItemType::Slot;
    bool isNumber = false;
    const int type = text.toInt(&isNumber);
    return isNumber ? std::optional(static_cast<MediaItemType>(type)) : std::nullopt;
}

std::shared_ptr<GuiMediaItem> mediaItemFromMimeData(const QMimeData* mimeData, const QJsonObject& object)
{
    static const GuiMediaItemFactory factory;
    const std::optional<MediaItemType> type = mediaItemTypeOf(mimeData);
    return type ? factory.createObject(*type, object) : nullptr;
}

} // namespace vantrel
