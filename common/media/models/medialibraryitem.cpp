#include "common/media/models/medialibraryitem.h"

#include "tarn/media/mediaslot.h"

namespace vantrel {

MediaLibraryItem::MediaLibraryItem(int number, const QString& name)
    : m_number(number)
    , m_name(shownText(name))
{
}

MediaLibraryItem::MediaLibraryItem(int number, const MediaSlot& slot)
    : m_number(number)
    , m_name(shownText(QString::fromStdString(slot.getName())))
    , m_url(QString::fromStdString(slot.getUrl()))
    , m_inpoint(slot.getInpoint())
    , m_outpoint(slot.getOutpoint())
    , m_effectiveDuration(slot.getEffectiveMediaDuration())
    , m_scaleMode(slot.getScaleMode())
    , m_isPlayable(slot.getIsPlayable())
    , m_mediaType(slot.getMediaType())
    , m_durationType(slot.getDurationType())
{
}

void MediaLibraryItem::setRecord(int row, const MediaSlot* record)
{
    if (record)
        m_records.set(row, *record);
    else
        m_records.erase(row);
}

} // namespace vantrel
