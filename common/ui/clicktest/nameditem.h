#pragma once

#include <QQuickItem>

namespace vantrel {

/// The first of that name below the item, itself among them; null for none.
inline QQuickItem* namedItem(QQuickItem* from, const QString& name)
{
    if (from->objectName() == name)
        return from;
    for (QQuickItem* child : from->childItems()) {
        if (QQuickItem* found = namedItem(child, name))
            return found;
    }
    return nullptr;
}

} // namespace vantrel
