#include "common/outputs/outputmodel.h"
#include "common/outputs/outputtexts.h"
#include "common/outputs/scalinggeometry.h"
#include "common/session/mirror/guichannel.h"
#include "common/session/mirror/guimapping.h"
#include "common/session/mirror/guimodeline.h"
#include "common/session/mirror/guioutput.h"
#include "common/session/mirror/objecttreemodel.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "tarn/scene/scene.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QColor>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

using namespace vantrel;
using vantrel::test::expectWarning;

namespace {

const char* const device = R"([
    {"op":"add","path":"/device/channels/0","value":{"type":"Channel","mappings":[
        {"type":"GpuMapping","properties":{"target":"DP-1"}},
        {"type":"GpuMapping","properties":{"target":"DP-2","defaultScaleMode":"clip","backgroundColor":"#102030"}}]}},
    {"op":"add","path":"/device/system/gpus/0","value":{"type":"Gpu","outputs":[
        {"type":"Output","properties":{"name":"DP-1"}},
        {"type":"Output","properties":{"name":"DP-2","connected":true,"width":1920,"height":1080,"hTotal":2200,
            "vTotal":1125,"dotClock":148351648,"product":"Wall"},
         "modelines":[{"type":"Modeline","properties":{"id":"a"}}]}]}}])";

} // namespace

class TestOutputModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_scene = makeRef<Scene>();
        m_tree = std::make_unique<ObjectTreeModel>();
        m_tree->setScene(m_scene.get());
        m_mirrors = std::make_unique<SceneObjectProvider>(m_tree.get(), nullptr, nullptr);
        m_model = std::make_unique<OutputModel>(&m_stack);
        m_tester = std::make_unique<QAbstractItemModelTester>(
            m_model.get(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        m_model->setOutput(m_mirrors->output2());
        m_model->setChannel(m_mirrors->channel());
        m_model->setPreviewMapping(m_mirrors->previewMapping());
        m_model->setProgramMapping(m_mirrors->programMapping());
        m_model->setModelines(m_mirrors->modelines(1));
    }

    void showsPlaceholdersBeforeAServer()
    {
        QCOMPARE(m_model->rowCount(), 1);
        QCOMPARE(m_model->columnCount(), 35);
        QCOMPARE(text(OutputModel::FieldFrequencyColumn), QStringLiteral("--"));
        QCOMPARE(text(OutputModel::LineFrequencyColumn), QStringLiteral("--"));
        QCOMPARE(text(OutputModel::ScalingColumn), QStringLiteral("fit"));
        QCOMPARE(text(OutputModel::TargetColumn), QString()); // an output without a name has no mapping
        QCOMPARE(value(OutputModel::BackgroundColorColumn).value<QColor>(), QColor(Qt::black));
        expectWarning(QStringLiteral("No mapping for output (preview = , program = )"));
        QVERIFY(m_model->setData(m_model->index(0, OutputModel::ScalingColumn), QStringLiteral("clip")));
        QVERIFY(!m_model->setData(m_model->index(0, OutputModel::HTotalColumn), 3));
        QVERIFY(!m_model->setData(m_model->index(0, OutputModel::ScalingColumn), 3, Qt::UserRole));
    }

    void followsItsOutputAndItsMapping()
    {
        QVERIFY(apply(device));
        QCOMPARE(text(OutputModel::FieldFrequencyColumn), QStringLiteral("59.94 Hz"));
        QCOMPARE(text(OutputModel::LineFrequencyColumn), QStringLiteral("67.4 kHz"));
        QCOMPARE(text(OutputModel::TargetColumn), QStringLiteral("program_rgb"));
        QCOMPARE(text(OutputModel::ScalingColumn), QStringLiteral("clip"));
        QCOMPARE(value(OutputModel::BackgroundColorColumn).value<QColor>(), QColor(0x10, 0x20, 0x30));
        expectWarning(QStringLiteral("Nothing to do in sendTarget"));
        m_model->sendTarget(QStringLiteral("program_rgb"));

        // Whatever changes is told by a reset and for all columns.
        const char* const changes[] = {
            R"([{"op":"replace","path":"/device/system/gpus/0/outputs/1/properties/interlaced","value":true}])",
            R"([{"op":"replace","path":"/device/channels/0/mappings/1/properties/defaultScaleMode","value":"fit"}])",
            R"([{"op":"replace","path":"/device/system/gpus/0/outputs/1/modelines/0/properties/label","value":"x"}])"};
        for (const char* change : changes) {
            QSignalSpy resets(m_model.get(), &OutputModel::modelReset);
            QSignalSpy data(m_model.get(), &OutputModel::dataChanged);
            QVERIFY(apply(change));
            QVERIFY2(!resets.isEmpty() && !data.isEmpty(), change);
            QCOMPARE(data.last().at(0).toModelIndex(), m_model->index(0, 0));
            QCOMPARE(data.last().at(1).toModelIndex(), m_model->index(0, 34));
        }
        QCOMPARE(text(OutputModel::FieldFrequencyColumn),
                 QStringLiteral("119.88 Hz")); // two fields a picture
        QCOMPARE(text(OutputModel::ScalingColumn), QStringLiteral("fit"));
    }

    void textsOfProperties()
    {
        QCOMPARE(OutputModel::formatFieldFreq(60), QStringLiteral("60 Hz"));
        QCOMPARE(OutputModel::formatLineFreq(67500), QStringLiteral("67.5 kHz"));
        QCOMPARE(formatLinkRate(20), QStringLiteral("5.40 Gbps (HBR2)"));
        QCOMPARE(formatLinkRate(2000), QStringLiteral("20.0 Gbps (UHBR10)"));
        QCOMPARE(formatLinkRate(1234), QStringLiteral("12.34 Gbps"));
        QCOMPARE(formatLinkRate(7), QStringLiteral("?"));
        QCOMPARE(linkText(4, 0), QStringLiteral("--"));
        QCOMPARE(polarityText(1, -1), QStringLiteral("+H -V"));
        QCOMPARE(polarityText(0, 1), QStringLiteral("+V"));
        QCOMPARE(colorDepthText(10), QStringLiteral("30 bits (10 bpc)"));
    }

    void mediaStandInTheirOutput_data()
    {
        QTest::addColumn<QSizeF>("media");
        QTest::addColumn<QRectF>("picture");
        QTest::addColumn<int>("cut"); // percent
        QTest::newRow("fit") << QSizeF(640, 480) << QRectF(240, 0, 1440, 1080) << 0;
        QTest::newRow("stretch") << QSizeF(640, 480) << QRectF(0, 0, 1920, 1080) << 0;
        QTest::newRow("clip") << QSizeF(640, 480) << QRectF(0, -180, 1920, 1440) << 25;
        QTest::newRow("centered") << QSizeF(640, 480) << QRectF(640, 300, 640, 480) << 0;
        QTest::newRow("topLeft") << QSizeF(3840, 2160) << QRectF(0, 0, 3840, 2160) << 75;
        QTest::newRow("bottomRight") << QSizeF(3840, 2160) << QRectF(-1920, -1080, 3840, 2160) << 75;
        QTest::newRow("topRight") << QSizeF(640, 480) << QRectF(1280, 0, 640, 480) << 0;
        QTest::newRow("bottomLeft") << QSizeF(640, 480) << QRectF(0, 600, 640, 480) << 0;
    }
    void mediaStandInTheirOutput()
    {
        QFETCH(QSizeF, media);
        QFETCH(QRectF, picture);
        QFETCH(int, cut);
        const ScalingGeometry geometry(QString::fromLatin1(QTest::currentDataTag()), media, {1920, 1080});
        QCOMPARE(geometry.picture(), picture);
        QCOMPARE(qRound(100 * geometry.cutShare()), cut);
        QCOMPARE(geometry.isDistorted(), qstrcmp(QTest::currentDataTag(), "stretch") == 0);
    }

private:
    QVariant value(int column) const { return m_model->index(0, column).data(); }
    QString text(int column) const { return value(column).toString(); }
    bool apply(const char* text)
    {
        Patch patch;
        return Patch::parseString(text, patch) && m_scene->apply(patch, true);
    }

    QUndoStack m_stack;
    Ref<Scene> m_scene;
    std::unique_ptr<ObjectTreeModel> m_tree;
    std::unique_ptr<SceneObjectProvider> m_mirrors;
    std::unique_ptr<OutputModel> m_model;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

HALCYRA_TEST(TestOutputModel)
#include "test_outputmodel.moc"
