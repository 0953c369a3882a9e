#pragma once

#include "tests/ombra/display/virtualscreen.h"
#include "tests/ombra/linkpeer.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmedia.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace vantrel::test {

inline constexpr QSize screenSize(640, 360);
inline constexpr int patience = 8000; // milliseconds

inline int apart(QRgb a, QRgb b)
{
    return std::max(
        {std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

/// A server of its own process with a virtual screen, its media, and a client of it.
class DisplayProbe
{
protected:
    void play(const QString& file, const char* side = "program")
    {
        const int slot = int(m_files.indexOf(file)) + 1;
        QVERIFY(slot > 0);
        invoke("/device/channels/0/" + std::string(side) + "/methods/playMedia",
               R"({"mediaUrl":"brume://collections/1/slots/)" + std::to_string(slot) + "\"}");
    }
    void invoke(const std::string& method, const std::string& arguments)
    {
        send(R"({"op":"invoke","path":")" + method + R"(","value":)" + arguments + "}");
    }
    void write(const std::string& property, const std::string& value)
    {
        send(R"({"op":"replace","path":"/device/channels/0/)" + property + R"(","value":")" + value + "\"}");
    }
    void send(const std::string& operation)
    {
        m_peer->send("[" + operation + "]");
        QVERIFY(m_peer->socket.waitForBytesWritten(patience));
    }

    const QTemporaryDir m_folder;
    QStringList m_files; // in the order of their slots: by the alphabet
    std::unique_ptr<VirtualScreen> m_screen;
    std::unique_ptr<OmbraProcess> m_ombra;
    std::unique_ptr<ombra::test::LinkPeer> m_peer;

    bool make(const QString& file, const QString& source, const QStringList& options)
    {
        m_files << file;
        return runFfmpeg(
            QStringList{QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), source} +
            options + QStringList{m_folder.filePath(file)});
    }
    /// Bars without loss, in that format, matrix and range.
    bool makeBars(const QString& file, const char* format, const char* matrix, const char* range,
                  const char* codec = "ffv1")
    {
        return make(
            file,
            QStringLiteral("smptehdbars=s=640x360:r=25:d=0.4,format=%1,setparams=colorspace=%2:range=%3")
                .arg(QLatin1String(format), QLatin1String(matrix), QLatin1String(range)),
            {QStringLiteral("-c:v"), QLatin1String(codec)});
    }
    void makeMedia()
    {
        QVERIFY(makeBars(QStringLiteral("bars601.mkv"), "yuv420p", "smpte170m", "tv"));
        QVERIFY(makeBars(QStringLiteral("bars601full.mkv"), "yuv420p", "smpte170m", "pc"));
        QVERIFY(makeBars(QStringLiteral("bars709.mkv"), "yuv420p", "bt709", "tv"));
        QVERIFY(makeBars(QStringLiteral("bars709deep.mkv"), "yuv422p10le", "bt709", "tv"));
        QVERIFY(makeBars(QStringLiteral("bars709full.mkv"), "yuv444p", "bt709", "pc"));
        QVERIFY(makeBars(QStringLiteral("bars709packed.mov"), "uyvy422", "bt709", "tv", "rawvideo"));
        QVERIFY(make(QStringLiteral("block.png"),
                     QStringLiteral("color=white:s=100x60:d=0.04,format=rgb24,drawbox=40:24:20:12:red:fill"),
                     {QStringLiteral("-frames:v"), QStringLiteral("1")}));
        for (const char* transfer :
             {"arib-std-b67", "smpte2084"}) // grey in eight steps, and below it of colour
            QVERIFY(
                make(QStringLiteral("bright-%1.mkv").arg(QLatin1String(transfer)),
                     QStringLiteral("color=black:s=640x360:r=25:d=0.4,format=yuv420p10le,geq="
                                    "lum='64+104*floor(X/80)':cb='512-64*gt(Y,90)':cr='512+108*gt(Y,90)'"),
                     {QStringLiteral("-c:v"), QStringLiteral("ffv1"), QStringLiteral("-colorspace"),
                      QStringLiteral("bt2020nc"), QStringLiteral("-color_primaries"),
                      QStringLiteral("bt2020"), QStringLiteral("-color_trc"), QLatin1String(transfer)}));
        QVERIFY(make(QStringLiteral("glass.png"),
                     QStringLiteral("color=white@0.5:s=640x360:d=0.04,format=rgba"),
                     {QStringLiteral("-frames:v"), QStringLiteral("1")}));
        QVERIFY(make(QStringLiteral("green.png"),
                     QStringLiteral("color=0x00ff00:s=640x360:d=0.04,format=rgb24"),
                     {QStringLiteral("-frames:v"), QStringLiteral("1")}));
        QVERIFY(make(QStringLiteral("light.exr"),
                     QStringLiteral("color=0x2e8008:s=640x360:d=0.04,format=gbrpf32le"),
                     {QStringLiteral("-frames:v"), QStringLiteral("1")}));
    }

    void startServer(const QStringList& options)
    {
        m_ombra = std::make_unique<OmbraProcess>();
        m_ombra->setMediaFolder(m_folder.path());
        m_ombra->setOptions(options);
        QVERIFY(m_ombra->start());
        connectPeer();
    }
    void connectPeer()
    {
        m_peer = std::make_unique<ombra::test::LinkPeer>(m_ombra->ports().link);
        QVERIFY(m_peer->socket.waitForConnected(patience));
        m_peer->send(R"([{"op":"get","path":""}])");
    }

    void startScreen()
    {
        qputenv("SDL_VIDEODRIVER", "x11"); // never the console of whoever tests
        makeMedia();
        m_screen = std::make_unique<VirtualScreen>(screenSize);
        QVERIFY(m_screen->start());
        qputenv("DISPLAY", m_screen->name().toLatin1());
    }
};

} // namespace vantrel::test
