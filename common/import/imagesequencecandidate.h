#pragma once

#include <QDebug>
#include <QObject>
#include <QString>
#include <QUrl>

#include <cstddef>

namespace vantrel {

/// An image sequence that may become a slot: what it is called, and how it is to run. A value.
struct ImageSequenceCandidate
{
    Q_GADGET
    Q_PROPERTY(QUrl id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(size_t startFrame MEMBER startFrame)
    Q_PROPERTY(size_t endFrame MEMBER endFrame)
    Q_PROPERTY(double fps MEMBER fps)

public:
    QUrl id; // of the pattern, as a local file
    QString name;
    std::size_t startFrame = 0; // numbers of the first and the last picture
    std::size_t endFrame = 0;
    double fps = 0;

    /// 0 when the end lies before the start.
    std::size_t frameCount() const { return endFrame < startFrame ? 0 : endFrame + 1 - startFrame; }
    /// Seconds; 0 without a rate.
    double duration() const { return fps > 0 ? static_cast<double>(frameCount()) / fps : 0; }

    friend bool operator==(const ImageSequenceCandidate&, const ImageSequenceCandidate&) = default;
};

/// For the log.
QDebug operator<<(QDebug debug, const ImageSequenceCandidate& candidate);

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::ImageSequenceCandidate)
