#pragma once

namespace vantrel {

/// Where something that is dragged over a list of rows would go: in place of a row, or behind one.
struct DropTarget
{
    enum class Kind { None, Insert, Replace };

    Kind kind = Kind::None;
    int row = -1; // replaced, or inserted behind; inserting, -1 is in front of the first

    bool isInsert() const { return kind == Kind::Insert; }
    bool isReplace() const { return kind == Kind::Replace; }
    /// Whether it goes in front of all rows, of which there may be none.
    bool isOnTop() const { return isInsert() && row < 0; }

    friend bool operator==(const DropTarget&, const DropTarget&) = default;
};

/// The drop targets of rows of one height. Lengths are pixels, y counts from the top of the first row.
class DropGeometry
{
public:
    DropGeometry(int rowHeight, int rowCount);

    /// The upper and the lower fifth of a row insert, what is between replaces, and below the last row it is
    /// appended. A list without rows takes what is dropped anywhere.
    DropTarget targetAt(int y) const;
    /// Where the line of an insertion stands.
    int lineOf(const DropTarget& insertion) const;

    /// The step, -1 up or 1 down, by which a drag at y scrolls a list that is seen from top to bottom; 0 away
    /// from its edges.
    static int scrollStep(int y, int top, int bottom);

private:
    int m_rowHeight;
    int m_rowCount;
};

} // namespace vantrel
