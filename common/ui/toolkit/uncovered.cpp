#include "common/ui/toolkit/uncovered.h"

#include "common/ui/style/spacing.h"

#include <QRect>
#include <QVariant>
#include <QWidget>

#include <algorithm>
#include <optional>

namespace vantrel {

namespace {

constexpr auto property = "keptUncovered";
constexpr int step = 8; // pixels, from one height that is tried to the next

struct Part
{
    std::function<QRect()> rect;
};

struct Kept
{
    QList<QRect> wholes;
    QList<QRect> parts;
};

Kept keptIn(const QWidget& window)
{
    Kept kept;
    const QList<QWidget*> widgets = keptUncovered(window);
    for (const QWidget* widget : widgets) {
        if (!widget->isVisible())
            continue;
        const QVariant value = widget->property(property);
        const bool isPart = value.canConvert<Part>();
        const QRect rect = isPart ? value.value<Part>().rect() : widget->rect();
        (isPart ? kept.parts : kept.wholes)
            .append(QRect(widget->mapTo(&window, rect.topLeft()), rect.size()));
    }
    return kept;
}

bool coversAny(const QRect& place, const QList<QRect>& rects)
{
    return std::ranges::any_of(rects, [&place](const QRect& one) { return one.intersects(place); });
}

} // namespace

void keepUncovered(QWidget* widget)
{
    widget->setProperty(property, true);
}

void keepUncovered(QWidget* widget, const std::function<QRect()>& part)
{
    widget->setProperty(property, QVariant::fromValue(Part{part}));
}

QList<QWidget*> keptUncovered(const QWidget& window)
{
    QList<QWidget*> kept = window.findChildren<QWidget*>();
    kept.removeIf([](const QWidget* widget) { return !widget->property(property).isValid(); });
    return kept;
}

QPoint uncoveredPlace(const QWidget& window, const QSize& size, int bottom)
{
    const Kept kept = keptIn(window);
    const int lowest = window.height() - size.height();
    QList<int> heights{bottom - size.height(), lowest};
    for (int y = heights.first() - step; y >= 0; y -= step)
        heights.append(y);
    const int middle = (window.width() - size.width()) / 2;
    const int right = window.width() - size.width() - spacing::normal;
    std::optional<QPoint> overParts;
    for (const int y : heights) {
        for (const int x : {middle, spacing::normal, right}) {
            const QRect place(QPoint(x, y), size);
            if (coversAny(place, kept.wholes))
                continue;
            if (!coversAny(place, kept.parts))
                return place.topLeft();
            overParts = overParts.value_or(place.topLeft());
        }
    }
    return overParts.value_or(QPoint(middle, lowest));
}

} // namespace vantrel
