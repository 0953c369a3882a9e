#pragma once

#include "ombra/decode/framescaler.h"
#include "tarn/preview/frame.h"
#include "tests/support/testmedia.h"

#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include <filesystem>

namespace vantrel::test {

/// A temporary media folder, filled by the ffmpeg tool. Pictures carry their own number as eight upright
/// stripes, white for a bit that is set, the lowest bit on the left.
class TestMedia
{
public:
    std::filesystem::path folder() const { return m_folder.path().toStdString(); }
    std::filesystem::path file(const char* name) const { return folder() / name; }

    /// Runs the tool on "arguments name"; false, with its output, when it fails.
    bool make(const QStringList& arguments, const QString& name) const
    {
        const bool isMade = runFfmpeg(arguments + QStringList{m_folder.filePath(name)});
        if (!isMade)
            qCritical("ffmpeg failed for %s", qPrintable(name));
        return isMade;
    }

    /// Numbered pictures, by default 25 a second, as input arguments for make().
    static QStringList numbered(double seconds, const QString& size = QStringLiteral("160x90"),
                                const QString& rate = QStringLiteral("25"))
    {
        return {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                QStringLiteral("color=black:s=%1:r=%2:d=%3,format=yuv420p,"
                               "geq=lum='16+219*mod(floor(N/pow(2,floor(X*8/W))),2)':cb=128:cr=128")
                    .arg(size, rate)
                    .arg(seconds)};
    }

    static QStringList colour(const QString& name, double seconds)
    {
        return {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                QStringLiteral("color=%1:s=160x90:r=25:d=%2").arg(name).arg(seconds)};
    }

    /// Sound by a formula of the time t, its channels parted by "|": "0.5*sin(2*PI*1000*t)|0".
    static QStringList sound(const QString& formula, double seconds, int rate = 48000)
    {
        return {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                QStringLiteral("aevalsrc=%1:s=%2:d=%3")
                    .arg(QString(formula).replace(u',', QStringLiteral("\\,")))
                    .arg(rate)
                    .arg(seconds)};
    }

    /// A second name for a file whose sound is of a kind that nobody knows: made from one with PCM in it.
    bool spoilSound(const char* from, const char* to) const
    {
        QFile in(QString::fromStdString(file(from))), out(QString::fromStdString(file(to)));
        if (!in.open(QIODevice::ReadOnly) || !out.open(QIODevice::WriteOnly))
            return false;
        QByteArray bytes = in.readAll();
        if (!bytes.contains("sowt"))
            return false;
        return out.write(bytes.replace("sowt", "zzzz")) == bytes.size();
    }

    static QStringList h264(int keyEvery)
    {
        return {QStringLiteral("-c:v"),      QStringLiteral("libx264"), QStringLiteral("-preset"),
                QStringLiteral("ultrafast"), QStringLiteral("-bf"),     QStringLiteral("2"),
                QStringLiteral("-g"),        QString::number(keyEvery), QStringLiteral("-pix_fmt"),
                QStringLiteral("yuv420p")};
    }

private:
    QTemporaryDir m_folder;
};

struct Rgb
{
    int red, green, blue;
};

inline Rgb pixelAt(const Surface& surface, int x, int y)
{
    const std::uint8_t* p =
        surface.pixels.data() + std::size_t(y) * surface.bytesPerLine + std::size_t(x) * 3;
    return {p[0], p[1], p[2]};
}

/// The number that a picture carries; -1 for a null surface, -2 where a stripe is neither black nor white.
inline int numberOn(const Surface* surface)
{
    if (!surface)
        return -1;
    int number = 0;
    for (int bit = 0; bit < 8; ++bit) {
        const int green = pixelAt(*surface, surface->width * (2 * bit + 1) / 16, surface->height / 2).green;
        if (green > 80 && green < 176)
            return -2;
        number |= (green >= 176) << bit;
    }
    return number;
}

/// What a picture looks like on a canvas; null for none.
inline Ref<Surface> drawn(const Ref<ombra::DecodedPicture>& picture, const ombra::Canvas& canvas = {})
{
    return picture ? ombra::FrameScaler().scale(*picture, canvas) : nullptr;
}

inline int numberOn(const Ref<ombra::DecodedPicture>& picture)
{
    return numberOn(drawn(picture).get());
}

} // namespace vantrel::test
