#include "tests/support/numberedclip.h"

#include <QPainter>
#include <QProcess>

namespace vantrel::test {

namespace {

constexpr int bits = 12;
constexpr int width = 320, height = 180;
constexpr int black = 20, white = 235; // a block between the two is a mixture

QImage numberedPicture(const QColor& marker, int frame)
{
    QImage picture(width, height, QImage::Format_RGB888);
    picture.fill(marker);
    QPainter painter(&picture);
    for (int i = 0; i < bits; ++i) {
        const bool isSet = (frame >> (bits - 1 - i)) & 1;
        const int left = i * width / bits, right = (i + 1) * width / bits;
        painter.fillRect(left, height / 3, right - left, height / 3, isSet ? Qt::white : Qt::black);
        painter.fillRect(left, 2 * height / 3, right - left, height / 3, isSet ? Qt::black : Qt::white);
    }
    return picture;
}

/// A point of the 16:9 area, both 0 to 1.
QColor at(const QImage& picture, double x, double y)
{
    const QSizeF area = QSizeF(16, 9).scaled(picture.size(), Qt::KeepAspectRatio);
    const QPoint point(int((picture.width() - area.width()) / 2 + x * area.width()),
                       int((picture.height() - area.height()) / 2 + y * area.height()));
    return picture.valid(point) ? picture.pixelColor(point) : QColor();
}

std::optional<bool> bitAt(const QImage& picture, double x, double y)
{
    const QColor colour = at(picture, x, y);
    if (colour.isValid() && colour.green() <= black)
        return false;
    return colour.isValid() && colour.green() >= white ? std::optional(true) : std::nullopt;
}

} // namespace

bool makeNumberedClip(const QString& file, const QColor& marker, int frames)
{
    QProcess tool;
    tool.start(QStringLiteral("ffmpeg"),
               {"-v",       "error",     "-y",
                "-f",       "rawvideo",  "-pix_fmt",
                "rgb24",    "-s",        QStringLiteral("%1x%2").arg(width).arg(height),
                "-r",       "25",        "-i",
                "-",        "-c:v",      "libx264",
                "-preset",  "ultrafast", "-crf",
                "18",       "-g",        "25",
                "-pix_fmt", "yuv420p",   file});
    if (!tool.waitForStarted())
        return false;
    for (int frame = 0; frame < frames; ++frame) {
        const QImage picture = numberedPicture(marker, frame);
        tool.write(reinterpret_cast<const char*>(picture.constBits()), picture.sizeInBytes());
        while (tool.bytesToWrite() > (1 << 24)) {
            if (!tool.waitForBytesWritten(10000))
                return false;
        }
    }
    tool.closeWriteChannel();
    return tool.waitForFinished(60000) && tool.exitCode() == 0;
}

QColor markerOf(const QImage& picture)
{
    return at(picture, 0.5, 1.0 / 6);
}

std::optional<int> frameNumberOf(const QImage& picture)
{
    int number = 0;
    for (int i = 0; i < bits; ++i) {
        const double x = (i + 0.5) / bits;
        const std::optional<bool> bit = bitAt(picture, x, 0.5), opposite = bitAt(picture, x, 5.0 / 6);
        if (!bit || !opposite || *bit == *opposite)
            return std::nullopt;
        number = 2 * number + *bit;
    }
    return number;
}

Seen seenOn(const QImage& picture)
{
    const auto level = [](int value) { return value < 128 ? 0 : 255; };
    const QColor marker = markerOf(picture);
    return {QColor(level(marker.red()), level(marker.green()), level(marker.blue())), frameNumberOf(picture)};
}

} // namespace vantrel::test
