#pragma once

#include "common/media/address/showntext.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/mediaslot.h"
#include "tarn/media/sharedmap.h"

#include <QString>
#include <QUrl>

#include <optional>

namespace vantrel {

/// A row of MediaLibraryModel: a collection with its slots, or a slot. Slots stand in their collection by
/// number, and a number without one has no item.
class MediaLibraryItem
{
public:
    MediaLibraryItem(int number, const QString& name);
    MediaLibraryItem(int number, const MediaSlot& slot);

    int number() const { return m_number; }
    const QString& name() const { return m_name; }
    void setName(const QString& name) { m_name = shownText(name); }
    const QUrl& url() const { return m_url; }
    double inpoint() const { return m_inpoint; }
    /// The out point, or else the duration.
    double getOutpoint() const { return m_outpoint.value_or(m_effectiveDuration); }
    double effectiveDuration() const { return m_effectiveDuration; }
    /// Seconds between the points.
    double getDuration() const { return getOutpoint() - m_inpoint; }
    ScaleMode scaleMode() const { return m_scaleMode; }
    bool isPlayable() const { return m_isPlayable; }
    MediaType mediaType() const { return m_mediaType; }
    bool hasInfiniteDuration() const { return m_durationType == MediaDurationType::Infinite; }

    // A collection keeps its slots as the library's records: few of them are ever looked at.
    using Records = SharedMap<int, MediaSlot>;
    int childCount() const { return m_childCount; }
    const Records& records() const { return m_records; }
    void setRecords(const Records& records) { m_records = records; }
    /// Without a record the number is left without a slot.
    void setRecord(int row, const MediaSlot* record);
    void setChildCount(int count) { m_childCount = count; }

private:
    int m_number;
    QString m_name;
    QUrl m_url;
    double m_inpoint = 0;
    std::optional<double> m_outpoint;
    double m_effectiveDuration = 0;
    ScaleMode m_scaleMode = ScaleMode::Default;
    bool m_isPlayable = false;
    MediaType m_mediaType = MediaType::Unknown;
    MediaDurationType m_durationType = MediaDurationType::Manual;
    int m_childCount = 0;
    Records m_records;
};

} // namespace vantrel
