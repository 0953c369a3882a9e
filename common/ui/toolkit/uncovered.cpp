#include "common/ui/toolkit/uncovered.h"

#include "common/ui/style/spacing.h"

#include <QRect>
#include <QVariant>
#include <QWidget>

#include <algorithm>
#include <array>

namespace vantrel {

namespace {

constexpr auto property = "keptUncovered";
constexpr int step = 8; // pixels, from one height that is tried to the next

QList<QRect> keptIn(const QWidget& window)
{
    QList<QRect> kept;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        if (widget->property(property).toBool() && widget->isVisible())
            kept.append(QRect(widget->mapTo(&window, QPoint()), widget->size()));
    }
    return kept;
}

} // namespace

void keepUncovered(QWidget* widget)
{
    widget->setProperty(property, true);
}

QPoint uncoveredPlace(const QWidget& window, const QSize& size, int bottom)
{
    const QList<QRect> kept = keptIn(window);
    const int lowest = window.height() - size.height();
    QList<int> heights{bottom - size.height(), lowest};
    for (int y = heights.first() - step; y >= 0; y -= step)
        heights.append(y);
    const int middle = (window.width() - size.width()) / 2;
    const int right = window.width() - size.width() - spacing::normal;
    for (const int y : heights) {
        for (const int x : {middle, spacing::normal, right}) {
            const QRect place(QPoint(x, y), size);
            if (std::ranges::none_of(kept, [&place](const QRect& one) { return one.intersects(place); }))
                return place.topLeft();
        }
    }
    return {middle, lowest};
}

} // namespace vantrel
