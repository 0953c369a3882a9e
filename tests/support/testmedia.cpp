#include "tests/support/testmedia.h"

#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace vantrel::test {

namespace {

QColor meanColour(const QImage& picture, QPoint centre, int radius)
{
    qint64 red = 0, green = 0, blue = 0, count = 0;
    for (int y = centre.y() - radius; y <= centre.y() + radius; ++y) {
        for (int x = centre.x() - radius; x <= centre.x() + radius; ++x) {
            if (!picture.valid(x, y))
                continue;
            const QRgb pixel = picture.pixel(x, y);
            red += qRed(pixel);
            green += qGreen(pixel);
            blue += qBlue(pixel);
            ++count;
        }
    }
    return count == 0 ? QColor() : QColor(int(red / count), int(green / count), int(blue / count));
}

} // namespace

bool runFfmpeg(const QStringList& arguments)
{
    std::vector<std::string> texts{"ffmpeg", "-v", "error", "-nostdin", "-y"};
    for (const QString& argument : arguments)
        texts.push_back(argument.toStdString());
    std::vector<char*> argv;
    for (std::string& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);
    pid_t process = 0;
    int status = 0;
    return ::posix_spawnp(&process, argv[0], nullptr, nullptr, argv.data(), environ) == 0 &&
           ::waitpid(process, &status, 0) == process && status == 0;
}

bool makeClip(const QString& file, const Quadrants& colours, double seconds)
{
    const auto source = [&](int i) {
        return QStringLiteral("color=c=0x%1:s=160x90:r=25:d=%2[q%3]")
            .arg(colours[size_t(i)].name().mid(1))
            .arg(seconds)
            .arg(i);
    };
    const QString filter =
        source(0) + ';' + source(1) + ';' + source(2) + ';' + source(3) +
        QStringLiteral(";[q0][q1]hstack[top];[q2][q3]hstack[low];[top][low]vstack,format=yuv420p[v]");
    return runFfmpeg({"-f", "lavfi", "-i", QStringLiteral("sine=frequency=330:duration=%1").arg(seconds),
                      "-filter_complex", filter, "-map", "[v]", "-map", "0:a", "-c:v", "libx264", "-preset",
                      "ultrafast", "-g", "25", "-c:a", "aac", file});
}

bool makeMovingClip(const QString& file, double seconds)
{
    return runFfmpeg({"-f", "lavfi", "-i", QStringLiteral("testsrc2=s=640x360:r=25:d=%1").arg(seconds), "-f",
                      "lavfi", "-i", QStringLiteral("sine=frequency=330:duration=%1").arg(seconds), "-c:v",
                      "libx264", "-preset", "ultrafast", "-g", "25", "-c:a", "aac", file});
}

Quadrants quadrantsOf(const QImage& picture)
{
    const QSizeF area = QSizeF(16, 9).scaled(picture.size(), Qt::KeepAspectRatio);
    const double left = (picture.width() - area.width()) / 2, top = (picture.height() - area.height()) / 2;
    Quadrants colours;
    for (size_t i = 0; i < colours.size(); ++i) {
        const QPoint centre(int(left + area.width() * (i % 2 == 0 ? 0.25 : 0.75)),
                            int(top + area.height() * (i < 2 ? 0.25 : 0.75)));
        colours[i] = meanColour(picture, centre, 3);
    }
    return colours;
}

QImage frameOf(const QString& file, double seconds)
{
    const QTemporaryDir folder;
    const QString picture = folder.filePath(QStringLiteral("frame.png"));
    if (!runFfmpeg({"-ss", QString::number(seconds), "-i", file, "-frames:v", "1", picture}))
        return {};
    return QImage(picture);
}

bool alike(const Quadrants& a, const Quadrants& b, int tolerance)
{
    for (size_t i = 0; i < a.size(); ++i) {
        if (!a[i].isValid() || !b[i].isValid())
            return false;
        const int apart = std::max({std::abs(a[i].red() - b[i].red()), std::abs(a[i].green() - b[i].green()),
                                    std::abs(a[i].blue() - b[i].blue())});
        if (apart > tolerance)
            return false;
    }
    return true;
}

} // namespace vantrel::test
