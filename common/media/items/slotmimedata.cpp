#include "common/media/items/slotmimedata.h"

#include "common/media/items/guimediaslot.h"
#include "common/media/items/mimedata.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

SlotMimeData::SlotMimeData(const MediaLibrary& library, const QList<MediaAddress>& addresses)
    : m_library(makeRef<MediaLibrary>(library)) // which shares all that it holds
    , m_addresses(addresses)
{
    setData(mimeformat::category, QByteArray::number(static_cast<int>(MimeItemCategory::MediaLibrary)));
    setData(mimeformat::type, mimeformat::slotType.toLatin1()); // so that slots take it too
}

SlotMimeData::~SlotMimeData() = default;

QStringList SlotMimeData::formats() const
{
    return QStringList{mimeformat::json} + QMimeData::formats();
}

QVariant SlotMimeData::retrieveData(const QString& format, QMetaType type) const
{
    if (format != mimeformat::json)
        return QMimeData::retrieveData(format, type);
    if (m_written.isEmpty())
        m_written = written();
    return m_written;
}

std::shared_ptr<GuiMediaSlot> SlotMimeData::slot(const MediaAddress& address) const
{
    return std::make_shared<GuiMediaSlot>(address, *m_library->findSlot(address.collection, address.slot));
}

QByteArray SlotMimeData::written() const
{
    QList<QJsonObject> objects;
    objects.reserve(m_addresses.size());
    for (const MediaAddress& address : m_addresses) {
        const std::shared_ptr<GuiMediaSlot> record = slot(address);
        if (record->frameRate() && !record->mediaType()) // the pictures' numbers go with the type only
            record->setMediaType(MediaType::ImageSequence);
        QJsonObject object = record->toJson();
        // Whoever takes it in refuses a type: that is the server's to tell.
        object.remove(QStringLiteral("type"));
        objects.append(object);
    }
    return writtenObjects(objects);
}

} // namespace vantrel
