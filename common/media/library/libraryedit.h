#pragma once

#include "common/media/library/diffapierror.h"
#include "tarn/json/patchbase.h"

#include <QString>

#include <functional>
#include <memory>

namespace vantrel {

class MediaLibrary;

/// An edit of the library in both directions. The command that an operator ran and the queue share it, so
/// that an undo that waits behind its redo is the undo of what the redo became.
struct LibraryEdit
{
    QString text; // for the operator
    Patch redo;
    Patch undo;
    PatchBase before; // what redo was made on
    PatchBase after;  // what undo was made on
    /// Makes all of the above anew for another library; false when the edit has no meaning there. Empty where
    /// an edit is nothing but its patches.
    std::function<bool(LibraryEdit& edit, const MediaLibrary& library)> rehearse;
    Json document;        // that redo was made on, until it is sent: there it fits, which nobody need look up
    bool refused = false; // the last redo changed nothing: there is nothing to undo
};

enum class EditDirection { Redo, Undo };

/// What an edit's sender hears of it: the server's answer, or why it was never sent.
using EditAnswered = std::function<void(const DiffApiError& answer)>;

} // namespace vantrel
