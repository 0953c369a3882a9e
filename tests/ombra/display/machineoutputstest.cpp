#include "ombra/display/machineoutputs.h"

#include "ombra/outputs/displayedid.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel;
using namespace vantrel::ombra;

/// The connectors of a machine without a desktop, as its kernel tells of them.
class MachineOutputsTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;

    void write(const QString& file, const QByteArray& content) const
    {
        const QFileInfo at(m_root.filePath(file));
        QVERIFY(QDir().mkpath(at.path()));
        QFile out(at.filePath());
        QVERIFY(out.open(QIODevice::WriteOnly) && out.write(content) == content.size());
    }
    static QByteArray edid()
    {
        return QByteArray::fromHex(QByteArray::fromStdString(makeEdid({.product = "Projector",
                                                                       .serial = "P-1",
                                                                       .maxRate = 75,
                                                                       .maxLineRate = 80,
                                                                       .maxDotClock = 150'000'000,
                                                                       .preferred = *findDmt(0x1c),
                                                                       .videoCodes = {19, 4, 5}})));
    }
    std::filesystem::path root() const { return m_root.path().toStdString(); }

private Q_SLOTS:
    void initTestCase() { qunsetenv("DISPLAY"); }

    void readsTheKernelsFolder()
    {
        write(QStringLiteral("card1-HDMI-A-1/status"), "connected\n");
        write(QStringLiteral("card1-HDMI-A-1/edid"), edid());
        write(QStringLiteral("card1-HDMI-A-1/modes"), "1280x800\n1280x720\n1920x1080\n");
        write(QStringLiteral("card0-DP-1/status"), "disconnected\n");
        write(QStringLiteral("card0-eDP-1/status"), "connected\n");
        write(QStringLiteral("card0-eDP-1/edid"), "no EDID at all");
        write(QStringLiteral("card0-Writeback-1/status"), "unknown\n");
        write(QStringLiteral("card0/status"), "connected\n");
        write(QStringLiteral("version"), "drm 1.1.0\n");
        const MachineOutputs machine(root());
        const auto found = machine.first(std::chrono::seconds(5));
        QCOMPARE(found.size(), std::size_t(3));
        QCOMPARE(found[0].name + " " + found[1].name + " " + found[2].name, std::string("DP-1 eDP-1 HDMI-1"));
        QVERIFY(!found[0].isConnected && found[1].isConnected && found[2].isConnected);
        QCOMPARE(found[2].edid, edid().toHex().toStdString());
        QCOMPARE(found[2].screen, 1); // the second that shows anything
        std::string modes;
        for (const VideoTiming& mode : found[2].modes)
            modes += mode.id() + ' ';
        QCOMPARE(modes, std::string("1280x800p59.81 1280x720p50 1280x720p60 "));
        QVERIFY(found[2].preferred == *findDmt(0x1c));
        QVERIFY(found[1].modes.empty());
        QVERIFY(readDrmFolder(root() / "none").empty());
    }

    void tellsWhatComesAndGoes()
    {
        MachineOutputs machine(root());
        const std::size_t before = machine.first(std::chrono::seconds(5)).size();
        std::mutex mutex;
        MachineOutputs::Connectors told;
        machine.setListener([&](MachineOutputs::Connectors now) {
            const std::lock_guard lock(mutex);
            told = std::move(now);
        });
        write(QStringLiteral("card0-VGA-1/status"), "connected\n");
        const auto has = [&](bool isConnected) {
            const std::lock_guard lock(mutex);
            return told.size() == before + 1 && told.back().name != "VGA-1" &&
                   std::ranges::any_of(told, [&](const Connector& one) {
                       return one.name == "VGA-1" && one.isConnected == isConnected;
                   });
        };
        QTRY_VERIFY(has(true));
        write(QStringLiteral("card0-VGA-1/status"), "disconnected\n");
        QTRY_VERIFY(has(false));
        machine.setListener({});
    }
};

HALCYRA_TEST(MachineOutputsTest)
#include "machineoutputstest.moc"
