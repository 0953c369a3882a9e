#pragma once

#include "tarn/media/enums.h"

#include <QString>
#include <QUrl>

#include <memory>
#include <optional>
#include <vector>

namespace vantrel {

class MediaSlot;

/// A row of MediaLibraryModel: a collection with its slots, or a slot. Slots stand in their collection by
/// number, and a number without one has no item.
class MediaLibraryItem
{
public:
    MediaLibraryItem(int number, const QString& name);
    MediaLibraryItem(int number, const MediaSlot& slot);

    int number() const { return m_number; }
    const QString& name() const { return m_name; }
    void setName(const QString& name) { m_name = name; }
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

    int childCount() const { return static_cast<int>(m_children.size()); }
    /// Null for a number without a slot.
    const MediaLibraryItem* child(int row) const;
    void setChild(int row, std::unique_ptr<MediaLibraryItem> item);
    void resizeChildren(int count) { m_children.resize(static_cast<std::size_t>(count)); }

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
    std::vector<std::unique_ptr<MediaLibraryItem>> m_children;
};

} // namespace vantrel
