#include "common/filesystem/model/pathhelpers.h"
#include "common/import/imagesequencecreator.h"
#include "common/import/mediadrop.h"
#include "common/import/mediaquestions.h"
#include "common/qml/dialogfactory.h"
#include "common/qml/dropdialog.h"
#include "common/qml/qmlmanager.h"
#include "common/qml/quickview.h"
#include "common/session/settings/configuration.h"
#include "common/ui/style/stylesheet.h"
#include "common/ui/toolkit/pushbutton.h"
#include "tarn/media/mediaenums.h"
#include "tests/common/filesystem/fakefilesystem.h"
#include "tests/common/import/fakecollections.h"
#include "tests/common/ui/testsettings.h"
#include "tests/support/testmain.h"
#include "tests/support/threadwork.h"

#include <QApplication>
#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace vantrel;
using namespace vantrel::test;
using images::ImageResultType;
using images::ImagesResult;
using images::StillImage;

namespace {

ImagesResult still(const QString& path)
{
    ImagesResult result;
    result.setStillImages({StillImage{path}});
    return result;
}

/// Its pictures are all there.
ImagesResult sequence(const QString& name, int first, int last)
{
    ImagesResult result;
    result.setType(ImageResultType::ImageSequence);
    const QString pattern = QStringLiteral("/%1_%02d.png").replace(QLatin1String("%1"), name);
    result.setImageSequence(
        ImageSequenceCandidate{QUrl::fromLocalFile(pattern), name, size_t(first), size_t(last), 60});
    QList<StillImage> pictures;
    for (int frame = first; frame <= last; ++frame)
        pictures.append(
            StillImage{QStringLiteral("/%1_%2.png").arg(name).arg(frame, 2, 10, QLatin1Char('0'))});
    result.setStillImages(pictures);
    return result;
}

/// Nobody knows of its files whether they play, until it is told.
class AskedFiles : public FakeFileSystem
{
public:
    ItemType getType(QString) override { return File; }
    bool requestMetadataAlone(const QString& path, FileMetadata& result) override
    {
        if (!told.contains(path)) {
            asked.append(path);
            return false;
        }
        result.isPlayable = told[path];
        result.mediaType = MediaType::VideoFile;
        result.durationMs = 2000;
        return true;
    }
    void tell(const QString& path, bool isPlayable)
    {
        told[path] = isPlayable;
        Q_EMIT fileMetadataChanged(
            FileSystemFile(getNameInPath(path), 1, FileSystemDirectory::fromFullPath(QStringLiteral("/"))),
            {});
    }

    QHash<QString, bool> told;
};

/// A drop on slot 5 of a collection that holds something in slot 7, and the dialog as it opens for it.
struct Opened
{
    explicit Opened(const QList<ImagesResult>& results)
    {
        collections.put(7, QStringLiteral("Logo"));
        drop.setImageResults(results);
        QMLManager::instance()->initialize();
        dialog = QMLManager::instance()->dialogs()->openDropDialog(&drop, true);
        const auto tell = [this] { dialog->setForecast(DropForecast::of(drop, collections)); };
        tell();
        QObject::connect(&drop, &MediaDrop::lastSlotChanged, dialog, tell);
        QObject::connect(&drop, &MediaDrop::isReadyChanged, dialog, tell);
        QObject::connect(dialog, &ZTDialog::confirmed, &drop, &MediaDrop::save);
        view = dialog->findChild<QuickView*>();
        const auto hasKeys = [this] {
            const QQuickItem* item = view->quickWindow()->activeFocusItem();
            return item && item->objectName().endsWith(QLatin1String("-input"));
        };
        isThere = QTest::qWaitFor([this] { return dialog->isVisible(); }, longestWait) &&
                  QTest::qWaitForWindowActive(dialog) && QTest::qWaitFor(hasKeys, longestWait);
    }
    void key(Qt::Key pressed, Qt::KeyboardModifiers held = Qt::NoModifier)
    {
        QTest::keyClick(view, pressed, held);
    }
    /// Into a field that has the keyboard, in the place of what stands there.
    void type(const QString& text)
    {
        key(Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(view, text);
    }
    QQuickItem* item(const QString& name) const
    {
        const auto search = [&](auto&& self, QQuickItem* from) -> QQuickItem* {
            if (from->objectName() == name)
                return from;
            for (QQuickItem* child : from->childItems()) {
                if (QQuickItem* found = self(self, child))
                    return found;
            }
            return nullptr;
        };
        return search(search, view->rootObject());
    }
    QString row(const QString& list, int number) const
    {
        const QQuickItem* found = item(QStringLiteral("DropDialog-%1-row%2").arg(list).arg(number));
        return found ? found->property("text").toString() : QString();
    }

    FakeCollections collections;
    ImageSequenceCreator creator{nullptr, &collections};
    MediaDrop drop{nullptr, &creator, 1, 5};
    QPointer<DropDialog> dialog;
    QuickView* view = nullptr;
    bool isThere = false;
};

} // namespace

class TestDropDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { StyleSheet::apply(*qApp); }
    void cleanupTestCase()
    {
        QMLManager::instance()->deinitialize();
        qApp->setStyleSheet({});
    }

    /// What is typed first goes for all that was found, and Enter stores it.
    void keyboardApproves()
    {
        Opened opened({sequence(QStringLiteral("a"), 1, 12), sequence(QStringLiteral("b"), 5, 9)});
        QVERIFY(opened.isThere);
        QVERIFY(!opened.dialog->isModal());
        QCOMPARE(opened.row(QStringLiteral("sequences"), 0),
                 QStringLiteral("a, 1 to 12, 60 fps, 00:00:00.200"));
        QCOMPARE(opened.dialog->description(), QStringLiteral("Slots 5 to 6 (2)."));
        opened.type(QStringLiteral("23,976"));
        QCOMPARE(opened.drop.imageSequences()[0].fps, 23.976);
        QCOMPARE(opened.drop.imageSequences()[1].fps, 23.976);
        // What no server can play is neither taken nor stored.
        for (const char* text : {"0", "", "x", "-25", "1e3", "100000"}) {
            opened.type(QString::fromLatin1(text));
            QVERIFY2(*text == 0 || !opened.dialog->acceptButton()->isEnabled(), text);
        }
        opened.key(Qt::Key_Return);
        QVERIFY(opened.dialog->isVisible() && opened.collections.content.size() == 1);
        opened.type(QStringLiteral("25"));
        opened.key(Qt::Key_Return);
        QCOMPARE(opened.collections.content[5].frameRate().value_or(0), 25.0);
        QCOMPARE(opened.collections.content[6].frameRate().value_or(0), 25.0);
        QVERIFY(!opened.dialog->isVisible());
    }

    void eachCanBeCorrectedByItself()
    {
        Opened opened({sequence(QStringLiteral("a"), 1, 12), sequence(QStringLiteral("b"), 5, 9),
                       still(QStringLiteral("/logo.png"))});
        QVERIFY(opened.isThere);
        opened.item(QStringLiteral("DropDialog-sequences-list"))->forceActiveFocus();
        opened.key(Qt::Key_Down);
        opened.item(QStringLiteral("DropDialog-last-field"))->forceActiveFocus();
        opened.type(QStringLiteral("3")); // before its first
        QVERIFY(!opened.dialog->acceptButton()->isEnabled());
        opened.type(QStringLiteral("10")); // of which there is no picture
        QCOMPARE(opened.row(QStringLiteral("sequences"), 1),
                 QStringLiteral("b, 1 missing, 5 to 10, 60 fps, 00:00:00.100"));
        QCOMPARE(opened.drop.imageSequences()[0].endFrame, size_t(12));
        // A slot for each picture, beyond what was known to be free.
        opened.item(QStringLiteral("DropDialog-stills-checkbox"))->forceActiveFocus();
        opened.key(Qt::Key_Space);
        QCOMPARE(opened.dialog->description(), QStringLiteral("Slots 5 to 11 (7). Overwrites 7 Logo."));
        // Where all were selected, all are.
        const auto* selection =
            opened.item(QStringLiteral("DropDialog-stills"))->property("selection").value<QObject*>();
        QTRY_COMPARE(selection->property("selectedCount").toInt(), 6);
        opened.item(QStringLiteral("DropDialog-duration-field"))->forceActiveFocus();
        opened.type(QStringLiteral("4.5"));
        opened.item(QStringLiteral("DropDialog-stills-list"))->forceActiveFocus();
        opened.key(Qt::Key_End);
        opened.item(QStringLiteral("DropDialog-infinite-checkbox"))->forceActiveFocus();
        opened.key(Qt::Key_Space);
        // The first of them is left out.
        opened.item(QStringLiteral("DropDialog-stills-list"))->forceActiveFocus();
        opened.key(Qt::Key_Home);
        opened.key(Qt::Key_Delete);
        QCOMPARE(opened.dialog->description(), QStringLiteral("Slots 5 to 10 (6). Overwrites 7 Logo."));
        QVERIFY(opened.dialog->acceptButton()->text() == QStringLiteral("OVERWRITE"));
        opened.key(Qt::Key_Return);
        const auto& stored = opened.collections.content;
        QCOMPARE(stored.size(), 6);
        QCOMPARE(stored[6].name(), QStringLiteral("b_06.png"));
        QCOMPARE(stored[6].durationType(), MediaDurationType::Manual);
        QCOMPARE(stored[6].duration(), 4.5);
        QCOMPARE(stored[10].durationType(), MediaDurationType::Infinite);
    }

    void escapeStoresNothing()
    {
        Opened opened({still(QStringLiteral("/logo.png"))});
        QVERIFY(opened.isThere);
        QSignalSpy refused(opened.dialog, &QDialog::rejected);
        opened.type(QStringLiteral("3"));
        opened.key(Qt::Key_Escape);
        QCOMPARE(refused.size(), 1);
        QCOMPARE(opened.collections.content.size(), 1);
    }

    void nobodyIsAskedForWhatIsGone()
    {
        FakeCollections collections;
        ImageSequenceCreator creator(nullptr, &collections);
        QMLManager::instance()->deinitialize();
        QMLManager::instance()->initialize(); // it has nothing of the view yet
        for (const bool isLoaded : {false, true}) {
            auto drop = std::make_unique<MediaDrop>(nullptr, &creator, 1, 5);
            drop->setImageResults({still(QStringLiteral("/logo.png"))});
            const QPointer dialog = QMLManager::instance()->dialogs()->openDropDialog(drop.get(), true);
            const auto hasContent = [&] { return dialog->findChild<QuickView*>()->rootObject() != nullptr; };
            QCOMPARE(hasContent(), isLoaded); // it is shown in the next turn
            QVERIFY(!dialog->isVisible());
            QSignalSpy refused(dialog, &QDialog::rejected);
            drop.reset();
            QTRY_VERIFY(!dialog);
            QCOMPARE(refused.size(), 1);
        }
    }

    /// Files stand there before the server has told of them, and those that somebody looks at are asked
    /// first.
    void filesAreToldOneByOne()
    {
        constexpr int count = 200;
        constexpr int patienceMs = 20000;
        const auto path = [](int i) { return QStringLiteral("/Door %1 slam.mp4").arg(i); };
        AskedFiles files;
        Opened opened({sequence(QStringLiteral("sky"), 1, 12)});
        QVERIFY(opened.isThere);
        for (int i = 0; i < count; ++i)
            opened.drop.requestAsynchronously({path(i), FileSystem::File}, &files);
        QTRY_COMPARE(opened.drop.askedCount(), count);
        QTRY_COMPARE(opened.row(QStringLiteral("medias"), 0),
                     QStringLiteral("Door 0 slam.mp4, not looked into yet"));
        QVERIFY(!opened.dialog->acceptButton()->isEnabled());
        QVERIFY(!files.asked.contains(path(count - 1)));
        QQuickItem* const list = opened.item(QStringLiteral("DropDialog-medias-list"));
        // Without passing the others, each of which would be looked at.
        QVERIFY(QMetaObject::invokeMethod(list, "positionViewAtEnd"));
        QTRY_VERIFY_WITH_TIMEOUT(!opened.row(QStringLiteral("medias"), count - 1).isEmpty(), patienceMs);
        for (int i = 0; i < MediaQuestions::mostOpen; ++i)
            files.tell(path(i), true); // so that others are asked
        QTRY_VERIFY_WITH_TIMEOUT(files.asked.contains(path(count - 1)), patienceMs);
        QVERIFY(!files.asked.contains(path(count / 2)));

        // What is told out of turn shows at once, and what cannot be played with the reason.
        files.tell(path(count - 1), false);
        QTRY_COMPARE(opened.row(QStringLiteral("medias"), count - 1),
                     QStringLiteral("Door 199 slam.mp4, Left out: the server cannot play it."));
        QVERIFY(opened.drop.faults().isEmpty());
        list->forceActiveFocus();
        opened.key(Qt::Key_End);
        opened.key(Qt::Key_Up);
        opened.key(Qt::Key_Delete); // 198
        QTRY_COMPARE(opened.drop.askedCount(), count - MediaQuestions::mostOpen - 1);
        for (int i = MediaQuestions::mostOpen; i < count; ++i)
            files.tell(path(i), i < count - 1);
        QTRY_VERIFY(opened.dialog->acceptButton()->isEnabled());
        QCOMPARE(opened.drop.medias().size(), count - 2);
        QCOMPARE(opened.drop.faults().size(), 1);
        opened.dialog->reject();
        QTRY_VERIFY(!opened.dialog);
    }

    /// At every text size nothing leaves the view or lies on something else.
    void layoutHolds()
    {
        for (int text = 0; text < 4; ++text) {
            m_settings->setValue(TEXT_SIZE, QVariant::fromValue(static_cast<FontSize>(text)));
            AskedFiles files;
            Opened opened({sequence(QStringLiteral("opening_sky_v003"), 1, 12),
                           sequence(QStringLiteral("b"), 5, 9), still(QStringLiteral("/logo.png")),
                           still(QStringLiteral("/sponsor plate.png"))});
            QVERIFY(opened.isThere);
            files.told[QStringLiteral("/Opening.mp4")] = true;
            for (const char* name : {"/Opening.mp4", "/Closing.mp4"})
                opened.drop.requestAsynchronously({QString::fromLatin1(name), FileSystem::File}, &files);
            QTRY_COMPARE(opened.row(QStringLiteral("medias"), 0),
                         QStringLiteral("Opening.mp4, 00:00:02.000"));
            const QByteArray folder = qgetenv("HALCYRA_PICTURES");
            if (!folder.isEmpty())
                opened.dialog->grab().save(
                    QStringLiteral("%1/drop-%2.png").arg(QString::fromLocal8Bit(folder)).arg(text));
            QRectF before;
            for (const char* name : {"medias-leave-out-button", "rate-field", "first-field", "last-field",
                                     "stills-checkbox", "sequences-leave-out-button", "duration-field",
                                     "infinite-checkbox", "stills-leave-out-button"}) {
                QQuickItem* part = opened.item(QStringLiteral("DropDialog-%1").arg(QLatin1String(name)));
                const QRectF box = part->mapRectToScene(part->boundingRect());
                QVERIFY2(opened.view->rect().contains(box.toAlignedRect()), name);
                QVERIFY2(!box.intersects(before), name);
                before = box;
            }
        }
        m_settings->setValue(TEXT_SIZE, QVariant::fromValue(FontSize::Medium));
    }

    /// However much was dropped, no key that is typed holds the window up.
    void manyStillsAreCorrectedAtOnce()
    {
        QList<ImagesResult> results;
        for (int i = 0; i < 5000; ++i)
            results.append(still(QStringLiteral("/still%1.png").arg(i)));
        Opened opened(results);
        QVERIFY(opened.isThere);
        const double before = threadWorkMs();
        opened.type(QStringLiteral("7"));
        const double work = threadWorkMs() - before;
        qInfo("a duration of 5,000 stills was taken in %.1f ms", work);
        QVERIFY(work < 2 * 16 * slowness); // two keys
        QCOMPARE(opened.drop.stillImages()[4999].durationSeconds, 7.0);
    }

private:
    TestSettings m_settings;
};

HALCYRA_TEST(TestDropDialog)

#include "test_dropdialog.moc"
