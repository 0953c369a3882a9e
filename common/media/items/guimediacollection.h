#pragma once

#include "common/media/items/guimediaitem.h"

#include <QString>

namespace vantrel {

/// A collection as views see it: its index and its name.
class GuiMediaCollection final : public GuiMediaItem
{
public:
    GuiMediaCollection() = default;
    GuiMediaCollection(uint index, const QString& name);

    uint index() const { return m_index; }
    const QString& name() const { return m_name; }

    bool fromJson(const QJsonObject& json) override;

private:
    uint m_index = 0;
    QString m_name;
};

} // namespace vantrel
