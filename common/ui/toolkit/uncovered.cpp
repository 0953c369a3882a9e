#include "common/ui/toolkit/uncovered.h"

#include "common/ui/style/spacing.h"

#include <QRect>
#include <QVariant>
#include <QWidget>

#include <algorithm>
#include <optional>
#include <utility>

namespace vantrel {

namespace {

constexpr auto property = "keptUncovered";
constexpr int step = 8; // pixels, from one height that is tried to the next

struct Part
{
    std::function<QRect()> rect;
};

struct Always
{
};

struct Kept
{
    QList<QRect> always; // which are among the wholes too
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
        const QRect place(widget->mapTo(&window, rect.topLeft()), rect.size());
        (isPart ? kept.parts : kept.wholes).append(place);
        if (value.canConvert<Always>())
            kept.always.append(place);
    }
    return kept;
}

bool coversAny(const QRect& place, const QList<QRect>& rects)
{
    return std::ranges::any_of(rects, [&place](const QRect& one) { return one.intersects(place); });
}

int coveredOf(const QRect& place, const QList<QRect>& rects)
{
    int pixels = 0;
    for (const QRect& one : rects) {
        const QRect covered = one & place;
        pixels += covered.isEmpty() ? 0 : covered.width() * covered.height();
    }
    return pixels;
}

/// Wherever it lies there, it lies over something; the first is taken where no other is better.
QPoint placeOfLeastHarm(const Kept& kept, const QRect& first, const QList<int>& heights, int right)
{
    const auto harmOf = [&kept](const QRect& place) {
        return std::pair(coveredOf(place, kept.always), coveredOf(place, kept.wholes));
    };
    QRect best = first;
    auto least = harmOf(first);
    for (const int y : heights) {
        for (int x = right; x >= std::min(right, spacing::normal); x -= step) {
            const QRect place(QPoint(x, y), first.size());
            if (const auto harm = harmOf(place); harm < least) {
                least = harm;
                best = place;
            }
        }
    }
    return best.topLeft();
}

} // namespace

void neverCover(QWidget* widget)
{
    widget->setProperty(property, QVariant::fromValue(Always()));
}

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
    return overParts ? *overParts
                     : placeOfLeastHarm(kept, QRect(QPoint(middle, lowest), size), heights, right);
}

} // namespace vantrel
