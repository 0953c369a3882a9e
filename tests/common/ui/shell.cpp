#include "common/notification/notificationmanagerimpl.h"
#include "common/qml/notificationstyle.h"
#include "common/qml/qmlmanager.h"
#include "common/session/link/connectionprovider.h"
#include "common/session/link/locatormodel.h"
#include "common/session/mirror/guishowconfiguration.h"
#include "common/session/mirror/serverconfigurationmodel.h"
#include "common/ui/clicktest/nameditem.h"
#include "common/ui/shell/configurationdialog.h"
#include "common/ui/shell/connectdialog.h"
#include "common/ui/shell/mainmenu.h"
#include "common/ui/shell/mainnavigationbar.h"
#include "common/ui/shell/mainwindow.h"
#include "common/ui/shell/notificationpresenter.h"
#include "common/ui/shell/notificationstatusbar.h"
#include "common/ui/shell/reconnectdialog.h"
#include "common/ui/shell/statusbar.h"
#include "common/ui/shell/statusbarmenu.h"
#include "common/ui/style/stylesheet.h"
#include "common/ui/toolkit/navbutton.h"
#include "common/ui/toolkit/navigationbar.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/switchselect.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/ui/toolkit/ztlabel.h"
#include "tarn/scene/scene.h"
#include "tests/common/ui/testsettings.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QDirIterator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSvgRenderer>
#include <QTableView>
#include <QTest>
#include <QUndoStack>

using namespace vantrel;

namespace {

/// What the operator sees of a manager's notifications.
class Shown
{
public:
    explicit Shown(NotificationManager* manager)
        : popup(new NotificationPresenter(&m_window))
        , counts(new NotificationStatusBar(&m_window))
    {
        popup->setManager(manager);
        counts->setManager(manager);
        m_window.resize(1200, 400);
        popup->move(100, 300); // not under the mouse
        m_window.show();
    }

    QString title() const
    {
        const QQuickItem* one = item(popup, QStringLiteral("NotificationPresenter-title"));
        return one ? one->property("text").toString() : QString();
    }
    int count(Notification::MessageType type) const
    {
        const QQuickItem* one = item(counts, QStringLiteral("NotificationStatusBar-count-%1").arg(type));
        return one && one->isVisible() ? one->property("text").toInt() : 0;
    }
    QPoint acceptButton() const
    {
        const QQuickItem* button = item(popup, QStringLiteral("NotificationPresenter-accept-button"));
        return button->mapToScene({button->width() / 2, button->height() / 2}).toPoint();
    }

private:
    /// Null while the view's file is being read.
    static QQuickItem* item(const QQuickWidget* view, const QString& name)
    {
        return view->rootObject() ? namedItem(view->rootObject(), name) : nullptr;
    }

    QWidget m_window;

public:
    NotificationPresenter* popup;
    NotificationStatusBar* counts;
};

} // namespace

class ShellTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void menuFollowsTheLink()
    {
        const auto scene = makeRef<Scene>();
        QUndoStack stack;
        MainMenu menu(scene.get(), &stack);
        const QStringList needsLink = {QStringLiteral("Disconnect from server"),
                                       QStringLiteral("Device Reboot"),
                                       QStringLiteral("Clear show"),
                                       QStringLiteral("Shows on the server..."),
                                       QStringLiteral("Save show"),
                                       QStringLiteral("Save show as..."),
                                       QStringLiteral("Revert show"),
                                       QStringLiteral("Bring back an earlier state...")};
        const QStringList needsNone = {QStringLiteral("Connect to server...")};
        const auto check = [&](bool connected) {
            for (const QAction* action : menu.actions()) {
                const bool expected = needsLink.contains(action->text())   ? connected
                                      : needsNone.contains(action->text()) ? !connected
                                                                           : true;
                QVERIFY2(action->isEnabled() == expected, qPrintable(action->text()));
            }
        };
        check(false);
        menu.handleConnected();
        check(true);
        menu.handleDisconnected();
        check(false);
    }

    void menuHoldsItsEntriesInOrder()
    {
        const auto scene = makeRef<Scene>();
        QUndoStack stack;
        MainMenu menu(scene.get(), &stack);
        QStringList texts;
        for (const QAction* action : menu.actions()) {
            if (!action->isSeparator())
                texts.append(action->text());
        }
        const QStringList expected = {QStringLiteral("Connect to server..."),
                                      QStringLiteral("Disconnect from server"),
                                      QStringLiteral("Device Reboot"),
                                      QStringLiteral("Clear show"),
                                      QStringLiteral("Shows on the server..."),
                                      QStringLiteral("Save show"),
                                      QStringLiteral("Save show as..."),
                                      QStringLiteral("Revert show"),
                                      QStringLiteral("Bring back an earlier state..."),
                                      QStringLiteral("Import show"),
                                      QStringLiteral("Export show"),
                                      QStringLiteral("Save diagnostics..."),
                                      QStringLiteral("Notifications"),
                                      QStringLiteral("Configuration"),
                                      QStringLiteral("Keyboard"),
                                      QStringLiteral("About"),
                                      QStringLiteral("Exit")};
        QCOMPARE(texts, expected);
    }

    void statusBarShowsTheLink()
    {
        ConnectionProvider connection;
        StatusBar bar(nullptr, &connection);
        const auto shown = [&bar](const char* name) {
            return !bar.findChild<QWidget*>(QLatin1String(name))->isHidden();
        };
        QVERIFY(shown("StatusBar-Disconnected") && !shown("StatusBar-ServerLabel"));
        bar.onConnected();
        QVERIFY(!shown("StatusBar-Disconnected") && shown("StatusBar-ServerLabel") &&
                shown("StatusBar-ServerName"));
        QAction* disconnect = bar.menu()->actions().at(1);
        QVERIFY(disconnect->isEnabled());
        QSignalSpy stop(&bar, &StatusBar::disconnectClicked);
        bar.onDisconnected(QString());
        bar.onReconnecting(2000);
        QVERIFY(shown("StatusBar-Disconnected") && !disconnect->isEnabled());
        QVERIFY(bar.reconnectDialog()->isVisible() && !bar.reconnectDialog()->isModal());
        bar.reconnectDialog()->acceptButton()->click();
        QCOMPARE(stop.size(), 1);
        bar.onReconnecting(2000);
        bar.onConnected();
        QVERIFY(!bar.reconnectDialog()->isVisible());
        bar.onDisconnected(QString());
        bar.onReconnecting(2000);
        connection.onAddressChange(QString()); // whoever stopped it
        QVERIFY(!bar.reconnectDialog()->isVisible());
    }

    void reconnectDotsKeepTheLineLong()
    {
        ReconnectDialog dialog;
        const auto* label = dialog.findChild<ZTLabel*>(QStringLiteral("ReconnectDialog-text"));
        QSet<QString> texts;
        qsizetype length = -1;
        for (int i = 0; i < 5; ++i) {
            dialog.updateText();
            texts.insert(label->text());
            QVERIFY(length < 0 || length == label->text().size());
            length = label->text().size();
        }
        QCOMPARE(texts.size(), 5);
    }

    void navigationSkipsWhatIsDisabled()
    {
        NavigationBar bar;
        for (int i = 0; i < 3; ++i)
            bar.addTab(i, new NavButton(QString::number(i), {}, &bar));
        QSignalSpy selected(&bar, &NavigationBar::tabSelected);
        bar.setActiveTab(0);
        bar.setActiveTab(0);
        bar.setDisabled(1);
        bar.setActiveTab(1);
        bar.setActiveTab(7);
        QCOMPARE(bar.activeTab(), 0);
        QTest::keyClick(&bar, Qt::Key_Right);
        QCOMPARE(bar.activeTab(), 2);
        QCOMPARE(selected.size(), 2);
        QVERIFY(bar.button(2)->isActive() && !bar.button(0)->isActive());
    }

    void navButtonsFollowTheTextSize_data()
    {
        QTest::addColumn<FontSize>("size");
        QTest::addColumn<int>("side");
        QTest::addColumn<int>("icon");
        QTest::newRow("small") << FontSize::Small << 27 << 15;
        QTest::newRow("medium") << FontSize::Medium << 36 << 20;
        QTest::newRow("large") << FontSize::Large << 48 << 30;
        QTest::newRow("huge") << FontSize::Huge << 72 << 40;
    }

    void navButtonsFollowTheTextSize()
    {
        QFETCH(FontSize, size);
        QFETCH(int, side);
        QFETCH(int, icon);
        const test::TestSettings settings;
        PushButton button;
        sizeNavButton(&button);
        settings->setValue(TEXT_SIZE, QVariant::fromValue(size));
        QCOMPARE(button.size(), QSize(side, side));
        QCOMPARE(button.iconSize(), QSize(icon, icon));
    }

    void everyTokenOfTheSheetHasAMeaning()
    {
        for (const auto size : {FontSize::Small, FontSize::Medium, FontSize::Large, FontSize::Huge}) {
            const QString sheet = StyleSheet::load(size); // an unknown token warns, and so fails the test
            QVERIFY(sheet.size() > 1000);
            QVERIFY(!sheet.contains(u'@'));
        }
        QVERIFY(StyleSheet::load(FontSize::Small) != StyleSheet::load(FontSize::Huge));
    }

    /// However deep it lies: an operator who makes the text larger waits for it.
    void anotherTextSizeReachesEachWidgetOnce()
    {
        class Counted : public QWidget
        {
        public:
            using QWidget::QWidget;
            int styled = 0;

        protected:
            void changeEvent(QEvent* event) override { styled += event->type() == QEvent::StyleChange; }
        };
        const auto undress = qScopeGuard([] { qApp->setStyleSheet({}); });
        StyleSheet::renew(*qApp, FontSize::Medium);
        Counted window;
        Counted* inner = &window;
        for (int depth = 0; depth < 20; ++depth)
            inner = new Counted(inner);
        window.show();
        inner->styled = 0;
        StyleSheet::renew(*qApp, FontSize::Large);
        QVERIFY2(inner->styled > 0 && inner->styled <= 4, qPrintable(QString::number(inner->styled)));
    }

    void everyIconIsADrawing()
    {
        int count = 0;
        for (QDirIterator it(QStringLiteral(":/icons")); it.hasNext(); ++count) {
            const QString path = it.next();
            QVERIFY2(QSvgRenderer(path).isValid(), qPrintable(path));
        }
        QVERIFY(count > 60);
    }

    void connectDialogWantsAnAddress_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("valid");
        QTest::newRow("empty") << "" << false;
        QTest::newRow("blanks") << "   " << false;
        QTest::newRow("host") << " stage-left " << true;
    }

    void connectDialogWantsAnAddress()
    {
        QFETCH(QString, text);
        QFETCH(bool, valid);
        const test::TestSettings settings;
        ConnectDialog dialog;
        QSignalSpy requested(&dialog, &ConnectDialog::connectRequested);
        dialog.findChild<ZTEdit*>(QStringLiteral("ConnectDialog-input-AddressBar"))->setText(text);
        QCOMPARE(dialog.acceptButton()->isEnabled(), valid);
        dialog.doConnect();
        QCOMPARE(requested.size(), valid ? 1 : 0);
        if (valid)
            QCOMPARE(settings->value(CONNECTION_HOST).toString(), text.trimmed());
    }

    void connectDialogChangesItsFaces()
    {
        const test::TestSettings settings;
        ConnectDialog dialog;
        QSignalSpy stopped(&dialog, &ConnectDialog::stop);
        QSignalSpy requested(&dialog, &ConnectDialog::connectRequested);
        dialog.showConnectDialog();
        dialog.acceptButton()->click();
        QCOMPARE(requested.size(), 1);
        dialog.setConnectingDialog(QStringLiteral("<b>host</b>"));
        QCOMPARE(dialog.title(), QStringLiteral("Connecting..."));
        QCOMPARE(dialog.findChild<ZTLabel*>(QStringLiteral("ConnectDialog-text"))->text(),
                 QStringLiteral("Connecting to <b>host</b>"));
        dialog.setDisconnectionDialog(QStringLiteral("host"));
        QCOMPARE(dialog.title(), QStringLiteral("Connection failed"));
        dialog.acceptButton()->click(); // back to the form
        QCOMPARE(dialog.title(), QStringLiteral("Connect to server"));
        QCOMPARE(stopped.size(), 0);
        dialog.setConnectingDialog(QStringLiteral("host"));
        dialog.acceptButton()->click();
        QCOMPARE(stopped.size(), 1);
        QVERIFY(!dialog.isVisible());
        QCOMPARE(requested.size(), 1);
        dialog.onConnected();
        dialog.showConnectDialog();
        QVERIFY(!dialog.cancelButton()->isEnabled());
        dialog.onDisconnected(QString()); // the operator's own: nothing has failed
        QCOMPARE(dialog.title(), QStringLiteral("Connect to server"));
        QVERIFY(dialog.cancelButton()->isEnabled());
        dialog.onDisconnected(QStringLiteral("host"));
        QCOMPARE(dialog.title(), QStringLiteral("Connection failed"));
        // Why, and which server is tried now: that of before is not forgotten for a name that was wrong.
        dialog.showFailure(QStringLiteral("wrong"), QStringLiteral("Because."), QStringLiteral("stage"));
        const QString told = dialog.findChild<ZTLabel*>(QStringLiteral("ConnectDialog-text"))->text();
        QVERIFY2(
            told.contains(QStringLiteral("wrong\n\nBecause.\n\nThe server before, stage, is tried again.")),
            qPrintable(told));
        QCOMPARE(settings->value(CONNECTION_HOST).toString(), QStringLiteral("stage"));
    }

    void foundServersStayPut()
    {
        LocatorModel model(nullptr);
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        const NetworkPeer a{"10.0.0.9", {{"version", "1.4"}, {"program", "Walk-in"}, {"state", "pause"}}};
        const NetworkPeer b{"10.0.0.10", {{"link", "11070"}, {"name", "<b>b</b>"}}};
        model.setPeers({b, a});
        QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
        model.setPeers({a, b});
        QCOMPARE(reset.size(), 0);
        const auto text = [&](int row, int column) { return model.index(row, column).data().toString(); };
        QCOMPARE(text(0, LocatorModel::AddressColumn), QStringLiteral("10.0.0.9"));
        QCOMPARE(text(0, LocatorModel::VersionColumn), QStringLiteral("1.4"));
        QCOMPARE(text(0, LocatorModel::ProgramColumn), QStringLiteral("Walk-in (paused)"));
        QCOMPARE(text(1, LocatorModel::NameColumn), QStringLiteral("<b>b</b>"));
        QVERIFY(!model.index(1, LocatorModel::VersionColumn).data().isValid());
        // One that cannot be connected to is shown, and says why.
        QVERIFY(!model.flags(model.index(1, 0)).testFlag(Qt::ItemIsEnabled));
        QVERIFY(model.index(1, 0).data(Qt::ToolTipRole).toString().contains(QStringLiteral("11070")));
        QVERIFY(text(1, LocatorModel::ProgramColumn).contains(QStringLiteral("11070")));
        model.setLinkPort(11070);
        QVERIFY(model.flags(model.index(1, 0)).testFlag(Qt::ItemIsEnabled));
        QCOMPARE(model.index(1, LocatorModel::NameColumn).data(Qt::ToolTipRole).toString(),
                 QStringLiteral("<p>&lt;b&gt;b&lt;/b&gt;</p>"));
        model.setPeers({a, {"10.0.0.10", {{"version", "2"}}}});
        QCOMPARE(reset.size(), 2);
    }

    void aChosenServerStaysChosen()
    {
        const test::TestSettings settings;
        ConnectDialog dialog;
        dialog.showConnectDialog();
        auto* view = dialog.findChild<QTableView*>(QStringLiteral("ConnectDialog-servers-view"));
        auto* address = dialog.findChild<ZTEdit*>(QStringLiteral("ConnectDialog-input-AddressBar"));
        auto* model = qobject_cast<LocatorModel*>(view->model());
        const auto chosen = [&] {
            const QModelIndexList rows = view->selectionModel()->selectedRows();
            return rows.size() == 1 ? rows.first().data().toString() : QString();
        };
        std::vector<NetworkPeer> peers;
        for (int i = 1; i <= 50; ++i)
            peers.push_back({"10.0.0." + std::to_string(i), {}});
        model->setPeers(peers);
        view->setCurrentIndex(model->index(0, 0));
        QTest::keyClick(view, Qt::Key_Down);
        QCOMPARE(address->text(), QStringLiteral("10.0.0.2"));
        view->verticalScrollBar()->setValue(view->verticalScrollBar()->maximum());
        const int place = view->verticalScrollBar()->value();
        // The list becomes another one while the operator looks at its end.
        peers[4].attributes["program"] = "Clock";
        peers.insert(peers.begin(), {"10.0.0.0", {}});
        model->setPeers(peers);
        QCOMPARE(chosen(), QStringLiteral("10.0.0.2"));
        QCOMPARE(view->verticalScrollBar()->value(), place);
        QCOMPARE(address->text(), QStringLiteral("10.0.0.2"));
        // What is typed is nobody's of the list, and is left alone.
        address->setText(QStringLiteral("stage"));
        QCOMPARE(chosen(), QString());
        model->setPeers({peers[2]});
        QCOMPARE(chosen(), QString());
        QCOMPARE(address->text(), QStringLiteral("stage"));
        QSignalSpy requested(&dialog, &ConnectDialog::connectRequested);
        const QPoint row = view->visualRect(model->index(0, 0)).center();
        // Between the two clicks the list becomes another one.
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, row);
        model->setPeers({peers[0], peers[2]});
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, row);
        QCOMPARE(requested.size(), 0); // another server stands there now
        model->setPeers({peers[2]});
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, row);
        peers[2].attributes["program"] = "Clock";
        model->setPeers({peers[2]});
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, row);
        QCOMPARE(requested.size(), 1);
        QCOMPARE(requested.first().first().toString(), QStringLiteral("10.0.0.2"));
    }

    void showListHoldsEachNameOnce()
    {
        auto mirror = std::make_shared<GUIShowConfiguration>();
        mirror->init();
        ServerConfigurationModel model;
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        model.setShowConfiguration(mirror);
        model.addShow(QStringLiteral("gala"));
        model.addShow(QStringLiteral("matinee"));
        model.addShow(QStringLiteral("gala"));
        QCOMPARE(mirror->autoStartShowList(), QStringLiteral("gala,matinee"));
        model.deleteShow(QStringLiteral("gala"));
        QCOMPARE(model.index(0, ServerConfigurationModel::AutoStartShowListColumn).data().toStringList(),
                 QStringList{QStringLiteral("matinee")});
        QVERIFY(model.setData(model.index(0, ServerConfigurationModel::AutoSaveColumn), true));
        QVERIFY(mirror->autoSave());
    }

    void configurationDialogWritesAtOnce()
    {
        const test::TestSettings settings;
        ConfigurationDialog dialog;
        dialog.open();
        auto* bar = dialog.findChild<NavigationBar*>();
        bar->setActiveTab(1);
        QCOMPARE(bar->activeTab(), 0); // no link, no server page
        dialog.onConnected();
        bar->setActiveTab(1);
        QCOMPARE(bar->activeTab(), 1);
        dialog.onDisconnected();
        QCOMPARE(bar->activeTab(), 0);
        dialog.findChild<PushButton*>(QStringLiteral("ConfigurationDialog-TextSize-small"))->click();
        dialog.findChild<PushButton*>(QStringLiteral("ConfigurationDialog-TimeFormat-df"))->click();
        QVERIFY(currentFontSize() == FontSize::Small);
        QCOMPARE(settings->value(TIMECODE_DISPLAY_MODE).toInt(), 3);
    }

    void notificationsAreCountedAndShownBySeverity()
    {
        NotificationManagerImpl manager;
        const Shown shown(&manager);
        QVERIFY(shown.popup->testAttribute(Qt::WA_TransparentForMouseEvents));
        QVERIFY(!QMLManager::instance()->engine()); // no start waits for it
        const auto warning =
            manager.createNotification(Notification::WarningMessage, QStringLiteral("w"), {});
        const auto error = manager.createNotification(Notification::ErrorMessage, QStringLiteral("e"), {});
        QTRY_COMPARE(shown.title(), QStringLiteral("e"));
        QTRY_COMPARE(shown.count(Notification::ErrorMessage), 1);
        QVERIFY(!shown.popup->testAttribute(Qt::WA_TransparentForMouseEvents));
        for (int time = 1; time < 10; ++time)
            manager.createNotification(Notification::ErrorMessage, QStringLiteral("e"), {});
        QTRY_COMPARE(shown.title(), QStringLiteral("e (10 times)"));
        QVERIFY(shown.popup->isVisible() && !shown.popup->accessibleName().isEmpty());
        QTest::mouseClick(shown.popup, Qt::LeftButton, {}, shown.acceptButton());
        QTRY_COMPARE(shown.title(), QStringLiteral("w"));
        QVERIFY(error->isAccepted() && !warning->isAccepted());
        QTRY_COMPARE(shown.count(Notification::ErrorMessage), 0);
        warning->setIsAccepted(true);
        QTRY_VERIFY(shown.popup->isHidden());
        QVERIFY(shown.popup->testAttribute(Qt::WA_TransparentForMouseEvents));
        QTRY_VERIFY(shown.counts->isHidden());
    }

    /// Markup goes, and nothing that somebody has named.
    void notificationsAreShownAsPlainText()
    {
        QCOMPARE(NotificationStyle::plainText(QStringLiteral("<b>Save</b> a &lt;b&gt;<br>c")),
                 QStringLiteral("Save a <b>\nc"));
        QCOMPARE(NotificationStyle::plainText(QStringLiteral("Clip<2>.mov is < 4 s & <newer>")),
                 QStringLiteral("Clip<2>.mov is < 4 s & <newer>"));
        QCOMPARE(NotificationStyle::plainText(QString(QChar(0x202e)) + QStringLiteral("vom.1") + QChar(0)),
                 QStringLiteral("vom.1"));
    }

    /// What is done needs nobody, a warning is counted on, an error stays until somebody has seen it.
    void notificationsLeaveByThemselves()
    {
        NotificationManagerImpl manager;
        const Shown shown(&manager);
        shown.popup->setStay(std::chrono::milliseconds(1));
        const auto done = manager.createNotification(Notification::CheckedMessage, QStringLiteral("d"), {});
        const auto warning =
            manager.createNotification(Notification::WarningMessage, QStringLiteral("w"), {});
        QTRY_VERIFY(done->isAccepted());
        QTRY_VERIFY(shown.popup->isHidden());
        QVERIFY(!warning->isAccepted());
        QCOMPARE(shown.count(Notification::WarningMessage), 1);
        shown.popup->setStay(std::chrono::hours(1));
        QCOMPARE(manager.createNotification(Notification::WarningMessage, QStringLiteral("w"), {}), warning);
        QTRY_VERIFY(!shown.popup->isHidden()); // who is refused once more sees it once more
        shown.popup->setStay(std::chrono::milliseconds(1));
        QTRY_VERIFY(shown.popup->isHidden());
        const auto error = manager.createNotification(Notification::ErrorMessage, QStringLiteral("e"), {});
        const auto next = manager.createNotification(Notification::InfoMessage, QStringLiteral("i"), {});
        QTRY_COMPARE(shown.title(), QStringLiteral("e"));
        error->setIsAccepted(true);
        QTRY_VERIFY(next->isAccepted());
    }
};

HALCYRA_TEST(ShellTest)
#include "shell.moc"
