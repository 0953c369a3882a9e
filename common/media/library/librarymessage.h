#pragma once

#include "common/media/library/librarychanges.h"
#include "tarn/json/patch.h"
#include "tarn/media/medialibrary.h"
#include "tarn/ref.h"

#include <QByteArray>
#include <QFuture>

#include <optional>

namespace vantrel {

/// What a message of the event stream does to the library. One that changes thousands of slots is read on a
/// worker thread, and there done on a copy of the library, which takes the library's place if that is still
/// the same.
struct LibraryMessage
{
    /// Messages up to so many bytes are read in no time.
    static constexpr qsizetype atOnce = 64 * 1024;

    bool isSound = false; // it is a patch
    std::string error;
    Patch patch;
    LibraryChanges changes;
    std::optional<qint64> revision; // of the library, from a server that counts
    qsizetype size = 0;             // in bytes
    Json before;                    // what it was done on
    Ref<MediaLibrary> after;        // null where it was not done, or does not fit

    static LibraryMessage of(const Patch& patch);
    static LibraryMessage read(const QByteArray& data);
    /// The same on a worker thread, and what it makes of the library.
    static QFuture<LibraryMessage> start(const QByteArray& data, const MediaLibrary& library);

    /// Does it to the library. False, and nothing is changed, where it does not fit.
    bool apply(MediaLibrary& library) const;
};

} // namespace vantrel
