#include "common/media/items/mimedata.h"

#include "common/media/items/guimediaitemfactory.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMimeData>

namespace vantrel {

QMimeData* createMimeData(const QList<QJsonObject>& objects, MimeItemCategory category, MediaItemType type)
{
    QJsonArray array;
    for (const QJsonObject& object : objects)
        array.append(object);
    auto* data = new QMimeData;
    data->setData(mimeformat::json, QJsonDocument(array).toJson(QJsonDocument::Compact));
    data->setData(mimeformat::category, QByteArray::number(static_cast<int>(category)));
    data->setData(mimeformat::type, QByteArray::number(static_cast<int>(type)));
    return data;
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

std::shared_ptr<GuiMediaItem> mediaItemFromMimeData(const QMimeData* mimeData, const QJsonObject& object)
{
    bool isNumber = false;
    const int type = mimeData ? mimeData->data(mimeformat::type).toInt(&isNumber) : 0;
    if (!isNumber)
        return nullptr;
    static const GuiMediaItemFactory factory;
    return factory.createObject(static_cast<MediaItemType>(type), object);
}

} // namespace vantrel
