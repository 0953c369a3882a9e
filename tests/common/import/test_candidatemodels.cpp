#include "common/import/imagesequencecandidatemodel.h"
#include "common/import/stillimagecandidatemodel.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace vantrel;
using images::ImageResultType;
using images::ImagesResult;
using images::StillImage;
using test::expectWarning;

namespace {

ImagesResult still(const QString& path)
{
    ImagesResult result;
    result.setStillImages({StillImage{path}});
    return result;
}

/// Frames 1 to 10, of which two are there.
ImagesResult sequence()
{
    ImagesResult result;
    result.setType(ImageResultType::ImageSequence);
    result.setImageSequence(ImageSequenceCandidate{QUrl::fromLocalFile(QStringLiteral("/s.%02d.png")),
                                                   QStringLiteral("s.%02d.png"), 1, 10, 50});
    result.setStillImages({StillImage{QStringLiteral("/s.01.png")}, StillImage{QStringLiteral("/s.10.png")}});
    return result;
}

} // namespace

class TestCandidateModels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sequencesAreCorrected()
    {
        using Model = ImageSequenceCandidateModel;
        Model model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        test::allowWarnings(QStringLiteral("Unable to handle role")); // the tester asks for all
        model.setImageResults({still(QStringLiteral("/a.png")), sequence(), still(QStringLiteral("/b.png"))});
        QCOMPARE(model.rowCount(), 1);
        const QModelIndex row = model.index(0);
        QCOMPARE(row.data(Model::FrameCountRole).toInt(), 10);
        QCOMPARE(row.data(Model::MissingFrameCountRole).toInt(), 8);
        QCOMPARE(row.data(Model::DurationStringRole).toString(), QStringLiteral("00:00:00.200"));
        QVERIFY(model.setData(row, 100, Model::EndFrameRole) && model.setData(row, 25, Model::FpsRole));
        QCOMPARE(row.data(Model::DurationStringRole).toString(), QStringLiteral("00:00:04.000"));
        for (const auto& [role, value] :
             std::initializer_list<std::pair<int, QVariant>>{{Model::FrameCountRole, 5},
                                                             {Model::StillImageCountRole, 5},
                                                             {Model::DurationStringRole, "x"},
                                                             {Model::StartFrameRole, -1},
                                                             {Model::FpsRole, 0},
                                                             {Model::FpsRole, "x"},
                                                             {Model::StillImageDurationRole, -5}}) {
            expectWarning(QStringLiteral("Unable to write data"));
            QVERIFY(!model.setData(row, value, role));
        }
        QVERIFY(model.setData(row, 200, Model::StartFrameRole)); // behind the end: nothing
        QCOMPARE(row.data(Model::FrameCountRole).toInt(), 0);
        QCOMPARE(row.data(Model::DurationStringRole).toString(), QStringLiteral("00:00:00.000"));
        QSignalSpy turned(&model, &Model::imageResultTypeChanged);
        QVERIFY(model.setData(row, QVariant::fromValue(ImageResultType::StillImage), Model::ImageTypeRole));
        QVERIFY(model.setData(row, 4, Model::StillImageDurationRole));
        QCOMPARE(turned.size(), 1);
        QCOMPARE(model.imageResults()[1].stillImages()[1].durationSeconds, 4.0);
        QVERIFY(model.removeRows(0, 1));
        QCOMPARE(model.imageResults().size(), 2);
    }

    void stillsAreListedOneByOne()
    {
        using Model = StillImageCandidateModel;
        Model model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        test::allowWarnings(QStringLiteral("Unable to handle role"));
        ImagesResult turned = sequence();
        turned.setType(ImageResultType::StillImage);
        model.setImageResults({still(QStringLiteral("/d/a.png")), sequence(), turned});
        QCOMPARE(model.rowCount(), 3);
        QVERIFY(model.setData(model.index(1), true, Model::HasInfiniteDurationRole));
        QVERIFY(model.setData(model.index(2), 3.5, Model::DurationSecondsRole));
        expectWarning(QStringLiteral("Unable to write data"));
        QVERIFY(!model.setData(model.index(2), 0, Model::DurationSecondsRole));
        QVERIFY(model.imageResults()[2].stillImages()[0].hasInfiniteDuration);
        QCOMPARE(model.get(2), (QVariantMap{{"name", "s.10.png"},
                                            {"durationSeconds", 3.5},
                                            {"imageType", QVariant::fromValue(ImageResultType::StillImage)},
                                            {"filePath", "/s.10.png"}}));
        QVERIFY(model.get(3).isEmpty());
        QVERIFY(model.removeRows(0, 2)); // the first result, and one of the third's
        QCOMPARE(model.imageResults().size(), 2);
        QCOMPARE(model.get(0).value(QStringLiteral("name")).toString(), QStringLiteral("s.10.png"));
    }
};

HALCYRA_TEST(TestCandidateModels)
#include "test_candidatemodels.moc"
