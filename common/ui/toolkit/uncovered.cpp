#include "common/ui/toolkit/uncovered.h"

#include <QVariant>
#include <QWidget>

#include <algorithm>

namespace vantrel {

namespace {

constexpr auto property = "keptUncovered";

} // namespace

void keepUncovered(QWidget* widget)
{
    widget->setProperty(property, true);
}

bool coversKept(const QWidget& window, const QRect& rectangle)
{
    const auto widgets = window.findChildren<QWidget*>();
    return std::ranges::any_of(widgets, [&](const QWidget* widget) {
        return widget->isVisible() && widget->property(property).toBool() &&
               QRect(widget->mapTo(&window, QPoint()), widget->size()).intersects(rectangle);
    });
}

} // namespace vantrel
