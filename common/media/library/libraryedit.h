#pragma once

#include "common/media/library/diffapierror.h"
#include "tarn/json/patchbase.h"
#include "tarn/media/medialibrary.h"

#include <QFuture>
#include <QString>

#include <functional>
#include <memory>
#include <utility>

namespace vantrel {

enum class EditDirection { Redo, Undo };

/// A patch's base that is looked up once somebody asks for it: that of thousands of records takes its time,
/// which the turn of the operator's drop does not have.
class DeferredBase
{
public:
    using LookUp = std::function<PatchBase(const Patch&)>; // in the document that it holds

    DeferredBase() = default;
    explicit DeferredBase(LookUp lookUp)
        : m_lookUp(std::move(lookUp))
    {
    }
    const PatchBase& of(const Patch& patch) const
    {
        if (m_lookUp)
            m_base = std::exchange(m_lookUp, nullptr)(patch);
        return m_base;
    }

private:
    mutable LookUp m_lookUp;
    mutable PatchBase m_base;
};

/// What an edit comes to on one library.
struct MadeEdit
{
    Patch redo;
    Patch undo;
    DeferredBase before; // what redo was made on
    DeferredBase after;  // what undo was made on
    // What redo was made on, and what that makes of it, until it is sent: there it fits, which nobody need
    // look up or work out.
    Json document;
    Ref<const MediaLibrary> made;

    /// Lets go of the documents that the bases are looked up in.
    void lookUpBases() const
    {
        before.of(redo);
        after.of(undo);
    }
};

/// An edit of the library in both directions. The command that an operator ran and the queue share it, so
/// that an undo that waits behind its redo is the undo of what the redo became.
struct LibraryEdit : MadeEdit
{
    QString text; // for the operator
    /// Makes it anew for another library; false when the edit has no meaning there. Empty where an edit is
    /// nothing but its patches.
    std::function<bool(MadeEdit& edit, const MediaLibrary& library)> rehearse;
    bool refused = false; // the last redo changed nothing: there is nothing to undo
    /// Of thousands of records it is made on a thread. Until settle() there is nothing of it here.
    QFuture<MadeEdit> making;

    bool isMade() const { return !making.isValid() || making.isFinished(); }
    /// Takes over what was made on a thread; waits for it.
    void settle()
    {
        if (making.isValid())
            static_cast<MadeEdit&>(*this) = making.takeResult();
    }
    const Patch& patch(EditDirection direction) const
    {
        return direction == EditDirection::Redo ? redo : undo;
    }
    const PatchBase& base(EditDirection direction) const
    {
        return direction == EditDirection::Redo ? before.of(redo) : after.of(undo);
    }
};

/// What an edit's sender hears of it: the server's answer, or why it was never sent.
using EditAnswered = std::function<void(const DiffApiError& answer)>;

} // namespace vantrel
