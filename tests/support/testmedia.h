#pragma once

#include <QColor>
#include <QImage>
#include <QString>
#include <QStringList>

#include <array>

namespace vantrel::test {

/// Four colours, by quadrant: upper left, upper right, lower left, lower right. What a test clip shows all
/// along.
using Quadrants = std::array<QColor, 4>;

/// Runs the ffmpeg tool, which writes what is wrong to the test's own output. False on failure. Not by Qt's
/// process: that leaves the thread sanitizer blind to what the calling thread locks from then on.
bool runFfmpeg(const QStringList& arguments);

/// Makes a clip of 320 x 180 pixels, 25 frames a second, with a quiet tone, by the ffmpeg tool. False on
/// failure.
bool makeClip(const QString& file, const Quadrants& colours, double seconds);

/// A clip of 640 x 360 pixels, 25 frames a second, in which much moves, with the same tone. False on failure.
bool makeMovingClip(const QString& file, double seconds);

/// The colours that a picture shows, read in the middle of the quadrants of the 16:9 area centred in it.
Quadrants quadrantsOf(const QImage& picture);

/// The picture of a media file itself, decoded by the ffmpeg tool.
QImage frameOf(const QString& file, double seconds);

/// Whether no channel of any quadrant is further apart than the tolerance (0 to 255).
bool alike(const Quadrants& a, const Quadrants& b, int tolerance = 28);

} // namespace vantrel::test
