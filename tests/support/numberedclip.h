#pragma once

#include <QColor>
#include <QImage>
#include <QString>

#include <optional>

namespace vantrel::test {

/// Makes a clip of 320 x 180 pixels, 25 frames a second, without sound: a band of the marker's colour, below
/// it the number of the frame as twelve black or white blocks, the highest bit first, below that the same
/// reversed. False on failure.
bool makeNumberedClip(const QString& file, const QColor& marker, int frames);

/// The colour of the marker in the 16:9 area centred in the picture.
QColor markerOf(const QImage& picture);

/// The number in the 16:9 area centred in the picture; nothing where a block is neither black nor white or
/// the two rows differ, as in a mixture of two pictures.
std::optional<int> frameNumberOf(const QImage& picture);

/// What a picture is of: a pure colour, and the number of the frame, none for a still, for black and for
/// mixtures.
struct Seen
{
    QColor colour;
    std::optional<int> number;
};

/// By the nearest of the pure colours to that of the marker.
Seen seenOn(const QImage& picture);

} // namespace vantrel::test
