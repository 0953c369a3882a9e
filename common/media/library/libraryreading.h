#pragma once

#include "tarn/ref.h"

#include <QByteArrayList>
#include <QFuture>

namespace vantrel {

class MediaLibrary;

/// What the body of a server's answer holds: a library, or why there is none. Large ones are read on a worker
/// thread, since the window must not stand still for them.
struct LibraryReading
{
    enum class Outcome { Library, NoJson, NoLibrary };

    /// Bodies up to so many bytes are read in no time.
    static constexpr qint64 atOnce = 256 * 1024;

    Outcome outcome = Outcome::NoJson;
    Ref<MediaLibrary> library; // null but for Outcome::Library
    QByteArray error;

    static LibraryReading read(const QByteArray& body);
    /// The same on a worker thread, of a body in pieces.
    static QFuture<LibraryReading> start(const QByteArrayList& pieces);

    /// Keeps what a library held until all others have let go of it, and then frees it on a worker thread: a
    /// large one takes its time.
    class Remains
    {
    public:
        explicit Remains(const MediaLibrary& library);
        ~Remains();
        Remains(const Remains&) = delete;
        Remains& operator=(const Remains&) = delete;

    private:
        Ref<MediaLibrary> m_library;
    };
};

} // namespace vantrel
