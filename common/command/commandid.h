#pragma once

namespace vantrel {

/// The merge ids of the commands that have one; only SetCommand merges.
enum class CommandId : int {
    Add = 0,
    Duplicate = 1,
    Move = 2,
    Remove = 3,
    Set = 5,
    RemoveCollection = 33,
    InsertCollection = 34,
    CopyCollection = 35,
};

} // namespace vantrel
