#include "common/media/items/mimedata.h"
#include "common/playback/endactionwidget.h"
#include "common/playback/mutebutton.h"
#include "common/playback/picturenotice.h"
#include "common/playback/playbackpreview.h"
#include "common/playback/playbackwidgetheader.h"
#include "common/playback/takebutton.h"
#include "common/playback/volumecontrolpopup.h"
#include "common/playback/volumeslider.h"
#include "common/session/settings/configuration.h"
#include "common/ui/style/colors.h"
#include "common/ui/timecode/timecodedisplay.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/ztlabel.h"
#include "tarn/media/playenums.h"
#include "tests/support/testmain.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDropEvent>
#include <QJsonObject>
#include <QMimeData>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

#include <atomic>

using namespace vantrel;
using vantrel::test::expectWarning;

class TestSmallControls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takeProgressUncoversTheBar_data()
    {
        QTest::addColumn<double>("progress");
        QTest::addColumn<double>("stored");
        QTest::addColumn<int>("shown");
        QTest::newRow("nothing") << 0.0 << 0.0 << 0;
        QTest::newRow("less than half a pixel") << 0.006 << 0.006 << 0;
        QTest::newRow("half a pixel rounds up") << 0.00625 << 0.00625 << 1;
        QTest::newRow("half") << 0.5 << 0.5 << 40;
        QTest::newRow("all") << 1.0 << 1.0 << 80;
        QTest::newRow("too much") << 1.7 << 1.0 << 80;
        QTest::newRow("too little") << -0.2 << 0.0 << 0;
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 0.0 << 0;
    }
    void takeProgressUncoversTheBar()
    {
        QFETCH(double, progress);
        QFETCH(double, stored);
        QFETCH(int, shown);
        TakeButton button;
        button.show();
        QCOMPARE(button.size(), QSize(80, 95));
        QSignalSpy changed(&button, &TakeButton::takeProgressChanged);
        button.setTakeProgress(0.25);
        button.setTakeProgress(progress);
        const auto* bar = button.findChild<QWidget*>(QStringLiteral("TakeProgressBar"));
        QCOMPARE(button.takeProgress(), stored);
        QCOMPARE(bar->isVisible(), shown > 0);
        if (shown > 0)
            QCOMPARE(bar->mask().boundingRect(), QRect(0, 0, shown, 95));
        QCOMPARE(changed.size(), 0);
    }

    void takeButtonFollowsTheTextSize()
    {
        Configuration settings;
        TakeButton button;
        const auto* label = button.findChild<QWidget*>(QStringLiteral("TakeLabel"));
        settings.setValue(TEXT_SIZE, QVariant::fromValue(FontSize::Huge));
        QCOMPARE(button.size(), QSize(160, 190));
        QCOMPARE(label->property("fontsize").toString(), QStringLiteral("huge"));
        settings.resetValue(TEXT_SIZE);
        QCOMPARE(button.size(), QSize(80, 95));
    }

    /// The third press of a contact that bounces comes as a press of its own.
    void aBouncingContactTakesOnce()
    {
        TakeButton button;
        QSignalSpy taken(&button, &QPushButton::clicked);
        const auto send = [&button](QEvent::Type type, quint64 at) {
            const QPointF place = QRectF(button.rect()).center();
            QMouseEvent event(type, place, button.mapToGlobal(place), Qt::LeftButton,
                              type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                              Qt::NoModifier);
            event.setTimestamp(at);
            QCoreApplication::sendEvent(&button, &event);
        };
        const auto press = [&send](quint64 at, QEvent::Type type = QEvent::MouseButtonPress) {
            send(type, at);
            send(QEvent::MouseButtonRelease, at + 5);
        };
        press(1000);
        press(1030, QEvent::MouseButtonDblClick);
        press(1060);
        QCOMPARE(taken.size(), 1);
        press(1060 + quint64(QApplication::doubleClickInterval()));
        QCOMPARE(taken.size(), 2);
    }

    void previewFiltersFrames_data()
    {
        QTest::addColumn<QByteArray>("source");
        QTest::addColumn<int>("stream");
        QTest::addColumn<bool>("taken");
        QTest::newRow("its own") << QByteArray("/device/channels/0/preview") << 0 << true;
        QTest::newRow("another stream") << QByteArray("/device/channels/0/preview") << 1 << false;
        QTest::newRow("another channel") << QByteArray("/device/channels/0/program") << 0 << false;
    }
    void previewFiltersFrames()
    {
        QFETCH(QByteArray, source);
        QFETCH(int, stream);
        QFETCH(bool, taken);
        PreviewFrame frame;
        frame.source = source.toStdString();
        frame.frame.setStreamIndex(stream);
        QPixmap picture(160, 90);
        picture.fill(Qt::red);
        PlaybackPreview preview;
        preview.onFrame(frame, picture);
        QVERIFY(preview.pixmap().isNull()); // no source yet
        preview.setSource("/device/channels/0/preview", 0);
        preview.onFrame(frame, picture);
        QCOMPARE(!preview.pixmap().isNull(), taken);
    }

    void previewFitsThePicture()
    {
        PlaybackPreview preview;
        preview.setSource("a", 0);
        const PreviewFrame frame{"a", {}};
        QPixmap picture(160, 90);
        picture.fill(Qt::red);
        preview.onFrame(frame, picture);
        preview.resize(320, 320);
        QCOMPARE(preview.pictureRect(), QRectF(0, 70, 320, 180));
        QImage image = preview.grab().toImage();
        QCOMPARE(image.pixelColor(160, 160), QColor(Qt::red));
        QCOMPARE(image.pixelColor(160, 60), colors::getColor(colors::Slate_grey_800)); // as the panel
        preview.setResourceConstrained(true);
        image = preview.grab().toImage();
        QVERIFY(image.pixelColor(2, 160) != QColor(Qt::red));
    }

    /// Qt's painter shares out long work among the threads of the global pool, and waits for them.
    void picturesWaitForNoThread()
    {
        PlaybackPreview preview;
        preview.setSource("a", 0);
        preview.resize(600, 400);
        QPixmap picture(640, 360);
        picture.fill(Qt::red);
        preview.onFrame({"a", {}}, picture);
        QThreadPool& threads = *QThreadPool::globalInstance();
        QSemaphore busy;
        std::atomic<bool> isOver = false;
        for (int i = 0; i < threads.maxThreadCount(); ++i)
            threads.start([&] { isOver = !busy.tryAcquire(1, 5000) || isOver; });
        const QImage image = preview.grab().toImage();
        const bool waited = isOver;
        busy.release(threads.maxThreadCount());
        threads.waitForDone();
        QVERIFY(!waited);
        QCOMPARE(image.pixelColor(300, 200), QColor(Qt::red));
    }

    /// A picture that has grown old is marked and dimmed; that of other media goes, at once when it is old,
    /// and soon when no more come.
    void oldPicturesAreMarked()
    {
        PlaybackPreview preview;
        PictureNotice notice(Program, &preview);
        preview.setSource("a", 0);
        preview.resize(320, 180);
        preview.show();
        QPixmap picture(160, 90);
        picture.fill(Qt::red);
        preview.onFrame({"a", {}}, picture);
        notice.setHasMedia(true);
        const auto shown = [&preview] { return preview.grab().toImage().pixelColor(160, 150); };
        QCOMPARE(notice.text(), QString());
        QCOMPARE(shown(), QColor(Qt::red));
        QTRY_COMPARE(notice.text(), QStringLiteral("Picture is 1 s old"));
        QVERIFY(shown().red() < 200);
        preview.expectNewMedia();
        QVERIFY(preview.pixmap().isNull());
        QTRY_COMPARE(notice.text(), QStringLiteral("No picture from the server"));
        preview.onFrame({"a", {}}, picture);
        preview.expectNewMedia();
        QVERIFY(!preview.pixmap().isNull()); // the next one may be of the new medium
        QTRY_VERIFY(preview.pixmap().isNull());
    }

    void unplayableMediaAreCovered_data()
    {
        using enum SourcePlayState;
        QTest::addColumn<PlaybackViewMode>("channel");
        QTest::addColumn<SourcePlayState>("state");
        QTest::addColumn<bool>("hasPicture");
        QTest::addColumn<QString>("words");
        QTest::addColumn<bool>("isCovered");
        const QString gone = QStringLiteral("This medium cannot be played.\nIt is gone.");
        QTest::newRow("plays") << Program << Play << true << QStringLiteral("Plays on. It is gone.") << false;
        QTest::newRow("on air") << Program << Pause << true << QStringLiteral("Held on air. It is gone.")
                                << false;
        QTest::newRow("cued") << Preview << Pause << true << QStringLiteral("Held on preview. It is gone.")
                              << false;
        QTest::newRow("stopped") << Program << Stop << true << gone << true;
        QTest::newRow("no picture") << Program << Play << false << gone << true;
    }
    /// But never what is seen on air all the same; a band tells of that, and of an old one how old it is.
    void unplayableMediaAreCovered()
    {
        QFETCH(PlaybackViewMode, channel);
        QFETCH(SourcePlayState, state);
        QFETCH(bool, hasPicture);
        QFETCH(QString, words);
        QFETCH(bool, isCovered);
        PlaybackPreview preview;
        PictureNotice notice(channel, &preview);
        preview.setSource("a", 0);
        preview.resize(320, 180);
        preview.show();
        QPixmap picture(160, 90);
        picture.fill(Qt::red);
        notice.setHasMedia(true);
        notice.setUnplayable(QStringLiteral("It is gone."));
        if (hasPicture)
            preview.onFrame({"a", {}}, picture);
        notice.setState(state);
        QCOMPARE(notice.text(), words);
        QCOMPARE(preview.accessibleDescription(), words.simplified());
        const QImage image = preview.grab().toImage();
        const QColor band = colors::getColor(colors::Zt_spot_color);
        QCOMPARE(image.pixelColor(2, 2) == band, !isCovered);
        QCOMPARE(image.pixelColor(160, 170) == QColor(Qt::red), !isCovered);
        if (isCovered)
            return;
        notice.setUnplayable(QStringLiteral("It is gone, and so is much else. ").repeated(20));
        preview.onFrame({"a", {}}, picture);
        QCOMPARE(preview.grab().toImage().pixelColor(160, 90), QColor(Qt::red));
        QTRY_VERIFY(notice.text().startsWith(QStringLiteral("Picture is 1 s old. It is gone")));
        QVERIFY(preview.grab().toImage().pixelColor(2, 170).red() < 200);
    }

    void aDropSaysWhatItWillDo_data()
    {
        QTest::addColumn<int>("channel");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QColor>("colour");
        QTest::newRow("program") << int(Program) << QStringLiteral("Let go: on air now, cut")
                                 << colors::getColor(colors::Zt_red);
        QTest::newRow("preview") << int(Preview) << QStringLiteral("Let go: cued on preview")
                                 << colors::getColor(colors::Green_green);
    }
    void aDropSaysWhatItWillDo()
    {
        QFETCH(int, channel);
        QFETCH(QColor, colour);
        PlaybackPreview preview;
        const PictureNotice notice(PlaybackViewMode(channel), &preview);
        preview.resize(320, 180);
        preview.show();
        const QMimeData text;
        QDragEnterEvent foreign(QPoint(5, 5), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&preview, &foreign);
        QVERIFY(!foreign.isAccepted() && notice.text().isEmpty());
        const std::unique_ptr<QMimeData> list(
            createMimeData({QJsonObject{{"name", "A"}, {"number", 3}, {"entryCount", 1}, {"duration", 2}}},
                           MimeItemCategory::Playlist, MediaItemType::Playlist));
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, list.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&preview, &enter);
        QTEST(notice.text(), "text");
        QCOMPARE(preview.grab().toImage().pixelColor(6, 6), colour);
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(&preview, &leave);
        QVERIFY(notice.text().isEmpty() && !notice.isVisible());
    }

    void previewTakesDrops_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<int>("drops");
        QTest::newRow("a playlist") << QByteArray(R"([{"name":"A","number":3,"entryCount":1,"duration":2}])")
                                    << 1;
        QTest::newRow("nothing") << QByteArray("[]") << 0;
        QTest::newRow("no JSON") << QByteArray("oh") << 0;
        QTest::newRow("half a playlist") << QByteArray(R"([{"name":"A","number":3}])") << 0;
    }
    void previewTakesDrops()
    {
        QFETCH(QByteArray, json);
        QFETCH(int, drops);
        QMimeData data;
        data.setData(mimeformat::json, json);
        data.setData(mimeformat::type, "3");
        PlaybackPreview preview;
        QSignalSpy spy(&preview, &PlaybackPreview::dragAndDropEntry);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&preview, &enter);
        QCOMPARE(enter.isAccepted(), drops > 0);
        QCOMPARE(preview.isDropTarget(), drops > 0); // nothing is promised that is not done
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&preview, &drop);
        QCOMPARE(spy.size(), drops);
        if (drops > 0)
            QVERIFY(spy.first().first().value<std::shared_ptr<GuiMediaItem>>());
    }

    void headerTellsTheLocation_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("text");
        QTest::newRow("slot") << "brume://collections/1/slots/5"
                              << "1-5:";
        QTest::newRow("entry") << "brume://playlists/2/entries/5.1"
                               << "5.1:";
        QTest::newRow("nothing") << ""
                                 << "";
        QTest::newRow("nonsense") << "file:///a.mp4"
                                  << "";
    }
    void headerTellsTheLocation()
    {
        QFETCH(QString, address);
        PlaybackWidgetHeader header(Preview);
        header.setObjectNames(QStringLiteral("H"));
        header.setMediaAddress(QStringLiteral("brume://collections/9/slots/9"));
        header.setMediaAddress(address);
        QTEST(header.findChild<ZTLabel*>(QStringLiteral("H-MediaLocation"))->text(), "text");
        header.setMediaName(QStringLiteral("<b>Walk-in</b>"));
        QCOMPARE(header.findChild<ElidedLabel*>(QStringLiteral("H-MediaName"))->text(),
                 QStringLiteral("<b>Walk-in</b>"));
    }

    void headerSwitchesToInfinite()
    {
        PlaybackWidgetHeader header(Program);
        header.show();
        QSignalSpy changed(&header, &PlaybackWidgetHeader::hasInfiniteDurationChanged);
        QVERIFY(header.duration()->isVisible());
        header.setHasInfiniteDuration(true);
        header.setHasInfiniteDuration(true);
        QVERIFY(!header.duration()->isVisible());
        QCOMPARE(changed.size(), 1);
        QVERIFY(!PlaybackWidgetHeader(Preview).muteButton());
    }

    /// The name is nowhere else, and what a duration is goes without saying.
    void theCaptionGivesWayToTheName()
    {
        PlaybackWidgetHeader header(Program);
        header.setObjectNames(QStringLiteral("H"));
        header.setColumnStep(ColumnStep::Wide);
        const auto* name = header.findChild<ElidedLabel*>(QStringLiteral("H-MediaName"));
        const auto* caption = header.findChild<QLabel*>(QStringLiteral("duration-caption"));
        header.setMediaName(QStringLiteral("Walk-in"));
        header.resize(header.sizeHint().width() + 10, 40);
        header.show();
        QTRY_VERIFY(caption->isVisible());
        header.setMediaName(QStringLiteral("Walk-in loop"));
        QTRY_VERIFY(!caption->isVisible());
        QTRY_COMPARE(name->shownText(), name->text());
        header.setMediaName(QStringLiteral("Walk-in"));
        QTRY_VERIFY(caption->isVisible());
    }

    void endActionsFollowTheMode_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<bool>("disabled");
        QTest::addColumn<QList<bool>>("enabled"); // next, pause, stop, repeat, go to
        using B = QList<bool>;
        QTest::newRow("disabled") << 0 << false << B{false, false, false, false, false};
        QTest::newRow("entry") << 1 << false << B{true, true, true, true, true};
        QTest::newRow("slot") << 2 << false << B{false, true, true, true, false};
        QTest::newRow("infinite media") << 1 << true << B{false, false, false, false, false};
    }
    void endActionsFollowTheMode()
    {
        QFETCH(int, mode);
        QFETCH(bool, disabled);
        QFETCH(QList<bool>, enabled);
        EndActionWidget widget;
        widget.setEndActionMode(PlaybackModel::SLOT);
        widget.QWidget::setDisabled(true);
        widget.setEndActionMode(mode);
        widget.QWidget::setDisabled(disabled);
        QList<bool> states;
        for (const QAbstractButton* button : widget.findChildren<QAbstractButton*>())
            states.append(button->isEnabled());
        QCOMPARE(states, enabled);
        // What cannot be chosen says why, unless nothing plays at all.
        for (const QAbstractButton* button : widget.findChildren<QAbstractButton*>()) {
            const bool hasReason = button->toolTip().contains(u'\n');
            QCOMPARE(hasReason, mode != PlaybackModel::DISABLED && !button->isEnabled());
        }
    }

    void endActionTellsOfChangesOnly()
    {
        EndActionWidget widget;
        widget.setObjectNames(QStringLiteral("E"));
        widget.setEndActionMode(PlaybackModel::ENTRY);
        QSignalSpy changed(&widget, &EndActionWidget::endActionChanged);
        auto* repeat = widget.findChild<QAbstractButton*>(QStringLiteral("E-repeat-button"));
        repeat->click();
        repeat->click();
        QCOMPARE(changed.size(), 1);
        QCOMPARE(widget.endAction(), 3);
        widget.setEndAction(1);
        QCOMPARE(changed.size(), 2);
        QVERIFY(widget.findChild<QAbstractButton*>(QStringLiteral("E-pause-button"))->isChecked());
        expectWarning(QStringLiteral("Button missing from map in EndActionWidget"));
        widget.handleButtonPress(nullptr);
    }

    void volumeTellsDecibels_data()
    {
        QTest::addColumn<int>("set");
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("unity") << 0 << 0 << "+0 dB";
        QTest::newRow("down") << -12 << -12 << "-12 dB";
        QTest::newRow("lowest") << -60 << -60 << "Mute";
        QTest::newRow("below") << -500 << -60 << "Mute";
        QTest::newRow("above") << 500 << 0 << "+0 dB";
    }
    void volumeTellsDecibels()
    {
        QFETCH(int, set);
        VolumeControlPopup popup;
        popup.slider()->setValue(-3);
        popup.slider()->setValue(set);
        QTEST(popup.slider()->value(), "value");
        QTEST(popup.findChild<ZTLabel*>(QStringLiteral("VolumeIndicator"))->text(), "text");
    }

    void volumeKeepsTheScenesValue()
    {
        VolumeControlPopup popup;
        QSignalSpy changed(&popup, &VolumeControlPopup::volumeChanged);
        popup.setVolume(0.4987654321);
        QCOMPARE(popup.volume(), 0.4987654321); // and not the amplitude of the -6 dB that it shows
        QCOMPARE(popup.slider()->value(), -6);
        popup.setVolume(0.4987654321);
        QCOMPARE(changed.size(), 1);
        QTest::keyClick(popup.slider(), Qt::Key_Down);
        QCOMPARE(popup.slider()->value(), -7);
        QVERIFY(qAbs(popup.volume() - 0.446684) < 1e-6);
        popup.slider()->setValue(-60);
        QCOMPARE(popup.volume(), 0.0);
        QCOMPARE(changed.size(), 3);
    }

    void muteTellsWishesOnly()
    {
        MuteButton button;
        QSignalSpy wished(&button, &MuteButton::muteStateChanged);
        button.setMuted(true);
        QVERIFY(button.isMuted());
        QCOMPARE(wished.size(), 0);
        button.click();
        QCOMPARE(wished.size(), 1);
        QCOMPARE(wished.first().at(0).toBool(), false);
    }
};

HALCYRA_TEST(TestSmallControls)
#include "test_smallcontrols.moc"
