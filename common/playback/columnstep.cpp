#include "common/playback/columnstep.h"

#include "common/ui/style/spacing.h"

#include <array>

namespace vantrel {

namespace {

using Widths = std::array<int, 4>; // Small, Medium, Large, Huge
using Sizes = QMap<FontSize, QSize>;

constexpr Widths columns[] = {{400, 480, 630, 790}, {290, 344, 416, 450}};
constexpr Widths takes[] = {{108, 120, 144, 184}, {92, 104, 128, 136}};

int at(const Widths (&widths)[2], ColumnStep step, FontSize size)
{
    return widths[static_cast<int>(step)][static_cast<std::size_t>(size)];
}

Sizes squares(const Widths& sides)
{
    Sizes sizes;
    for (const auto size : {FontSize::Small, FontSize::Medium, FontSize::Large, FontSize::Huge}) {
        const int side = sides[static_cast<std::size_t>(size)];
        sizes.insert(size, {side, side});
    }
    return sizes;
}

} // namespace

int columnWidth(ColumnStep step, FontSize size)
{
    return at(columns, step, size);
}

int takeWidth(ColumnStep step, FontSize size)
{
    return at(takes, step, size);
}

int channelsWidth(ColumnStep step, FontSize size)
{
    return 2 * (columnWidth(step, size) + spacing::tight) + takeWidth(step, size);
}

const QMap<FontSize, QSize>& transportSizes(ColumnStep step)
{
    // Nine of them stand in the narrowest column.
    static const Sizes wide = squares({30, 38, 50, 64});
    static const Sizes narrow = squares({26, 32, 40, 44});
    return step == ColumnStep::Wide ? wide : narrow;
}

const QMap<FontSize, QSize>& buttonSizes(ColumnStep step)
{
    static const Sizes wide = squares({26, 32, 42, 54});
    static const Sizes narrow = squares({24, 28, 36, 44});
    return step == ColumnStep::Wide ? wide : narrow;
}

const QMap<FontSize, QSize>& takeOptionSizes(ColumnStep step)
{
    static const Sizes wide = squares({26, 32, 42, 54});
    static const Sizes narrow = squares({24, 28, 36, 40});
    return step == ColumnStep::Wide ? wide : narrow;
}

} // namespace vantrel
