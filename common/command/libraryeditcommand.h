#pragma once

#include "common/command/abstractdiffapicommand.h"
#include "tarn/ref.h"

#include <functional>

namespace vantrel {

class MediaLibrary;

/// Base of the commands that edit collections, slots and playlists. A derived init() gives the edit as a
/// function of a library; it runs on a private copy, and both patches are what the documents before and after
/// differ by.
class LibraryEditCommand : public AbstractDiffApiCommand
{
    Q_OBJECT

public:
    using AbstractDiffApiCommand::AbstractDiffApiCommand;

    /// Whether init() came as far as to try the edit: what it refused then does not fit the library.
    bool wasRehearsed() const { return m_wasRehearsed; }

protected:
    /// Edits the copy. False, after a warning of its own, when that cannot be.
    using Edit = std::function<bool(MediaLibrary& library)>;

    /// Says after a warning of its own whether the edit can be.
    using Fits = std::function<bool(const MediaLibrary& library)>;

    /// Rehearses the edit; on success both patches and the text stand and the command is initialised.
    bool rehearse(const MediaLibrary* library, const QString& text, const Edit& edit);
    /// The same with an edit that takes the first one back; the undo patch is what that one makes.
    bool rehearse(const MediaLibrary* library, const QString& text, const Edit& edit, const Edit& inverse);
    /// The same for an edit of so many records, which cannot fail where it fits: that of many is rehearsed on
    /// a thread, and what it comes to is there later.
    bool rehearseMany(const MediaLibrary* library, const QString& text, qsizetype records, const Fits& fits,
                      const Edit& edit);

    /// Whether there is a server to send the patches to; warns when there is none.
    virtual bool hasApi() const;
    bool hasApiOrWarns(const char* warning) const;

private:
    Ref<const MediaLibrary> libraryFor(const MediaLibrary* library, const QString& text);
    void take(LibraryEdit edit, const QString& text);

    bool m_wasRehearsed = false;
};

} // namespace vantrel
