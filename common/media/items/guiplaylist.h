#pragma once

#include "common/media/items/guimediaitem.h"

#include <QString>

namespace vantrel {

/// A playlist as views see it. The duration is in seconds and means nothing when it is infinite.
class GuiPlaylist final : public GuiMediaItem
{
public:
    GuiPlaylist() = default;
    GuiPlaylist(const QString& name, uint number);

    const QString& name() const { return m_name; }
    uint number() const { return m_number; }
    uint entryCount() const { return m_entryCount; }
    void setEntryCount(uint count) { m_entryCount = count; }
    double duration() const { return m_duration; }
    bool isInfinite() const { return m_isInfinite; }
    void setDuration(double seconds, bool infinite);

    QJsonObject toJson() const;
    /// Takes the duration for a finite one: the payload has no word for the other.
    bool fromJson(const QJsonObject& json) override;

private:
    QString m_name;
    uint m_number = 0;
    uint m_entryCount = 0;
    double m_duration = 0;
    bool m_isInfinite = false;
};

} // namespace vantrel
