#include "common/views/playlist/droptarget.h"

#include <algorithm>

namespace vantrel {

namespace {

// A cursor's distance from the bottom of its row, in percent of the row.
constexpr int upperShare = 80;
constexpr int lowerShare = 20;

// In pixels, where a drag scrolls.
constexpr int topEdge = 20;
constexpr int bottomEdge = 18;

} // namespace

DropGeometry::DropGeometry(int rowHeight, int rowCount)
    : m_rowHeight(std::max(1, rowHeight))
    , m_rowCount(std::max(0, rowCount))
{
}

DropTarget DropGeometry::targetAt(int y) const
{
    using Kind = DropTarget::Kind;
    if (y < 0 || m_rowCount == 0)
        return {Kind::Insert, -1};
    const int row = y / m_rowHeight;
    if (row >= m_rowCount)
        return {Kind::Insert, m_rowCount - 1};
    const int share = ((row + 1) * m_rowHeight - y) * 100 / m_rowHeight;
    if (share > upperShare)
        return {Kind::Insert, row - 1};
    if (share < lowerShare)
        return {Kind::Insert, row};
    return {Kind::Replace, row};
}

int DropGeometry::lineOf(const DropTarget& insertion) const
{
    return (std::clamp(insertion.row, -1, m_rowCount - 1) + 1) * m_rowHeight;
}

int DropGeometry::scrollStep(int y, int top, int bottom)
{
    if (y < top + topEdge)
        return -1;
    return y > bottom - bottomEdge ? 1 : 0;
}

} // namespace vantrel
