#include "ombra/preview/previewserver.h"

#include "tarn/preview/audiolevels.h"
#include "tarn/preview/previewwire.h"
#include "tests/support/testmain.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTest>
#include <boost/asio/io_context.hpp>

#include <cstring>
#include <map>

using namespace vantrel;
using namespace vantrel::ombra;

namespace {

PreviewFrame pictureOf(const std::string& source, int number)
{
    const auto surface = makeRef<Surface>();
    surface->format = Surface::formatRgb24;
    surface->width = 480;
    surface->height = 270;
    surface->bytesPerLine = 480 * 3;
    surface->pixels.assign(std::size_t(480 * 3 * 270), std::uint8_t(number));
    return {source, Frame(surface.get(), number)};
}

} // namespace

class PreviewServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// A reader that sleeps through hundreds of pictures gets only a few, and the newest of each source last.
    void slowReadersGetTheNewest()
    {
        boost::asio::io_context io;
        PreviewServer server(io);
        std::string error;
        QVERIFY2(server.listen(boost::asio::ip::address_v4::loopback(), 0, &error), error.c_str());
        QTcpSocket other, socket;
        other.connectToHost(QStringLiteral("127.0.0.1"), server.port());
        socket.setReadBufferSize(64 * 1024);

        previewwire::Decoder decoder;
        std::map<std::string, long long> newest;
        int frames = 0;
        const auto waitFor = [&](const std::function<bool()>& condition, bool read) {
            QElapsedTimer timer;
            for (timer.start(); timer.elapsed() < 10000;) {
                if (condition())
                    return true;
                io.restart();
                io.run_for(std::chrono::milliseconds(1));
                QCoreApplication::processEvents();
                while (read && socket.bytesAvailable() > 0) {
                    const auto space = decoder.space();
                    const qint64 count =
                        socket.read(reinterpret_cast<char*>(space.data()), qint64(space.size()));
                    const auto result = decoder.commit(std::size_t(count));
                    if (result == previewwire::Decoder::Result::Error)
                        return false;
                    if (result == previewwire::Decoder::Result::Frame) {
                        const PreviewFrame frame = decoder.take();
                        newest[frame.source +
                               (AudioLevels::fromSurface(frame.frame.getSurface()) ? "#" : "")] =
                            frame.frame.getTime();
                        ++frames;
                    }
                }
            }
            return false;
        };
        QVERIFY(waitFor([&] { return server.hasReaders(); }, true));
        server.show(pictureOf("/early", 7));
        QVERIFY(waitFor([&] { return other.bytesAvailable() > 480 * 270; }, true));
        socket.connectToHost(QStringLiteral("127.0.0.1"), server.port());
        QVERIFY(waitFor([&] { return newest["/early"] == 7; }, true)); // what is shown already comes at once

        frames = 0;
        int shown = 0;
        QVERIFY(waitFor(
            [&] {
                ++shown;
                server.show(pictureOf("/a", shown));
                server.show(pictureOf("/b", 1000 + shown));
                server.show({"/a", Frame(AudioLevels().toSurface().get(), 2000 + shown)});
                return shown == 300;
            },
            false));
        QVERIFY(waitFor([&] { return newest["/a"] == 300 && newest["/b"] == 1300 && newest["/a#"] == 2300; },
                        true));
        QVERIFY2(frames < 300, qPrintable(QString::number(frames)));

        other.abort();
        socket.abort();
        QVERIFY(waitFor([&] { return server.show(pictureOf("/late", 8)), !server.hasReaders(); }, false));
    }
};

HALCYRA_TEST(PreviewServerTest)
#include "previewservertest.moc"
