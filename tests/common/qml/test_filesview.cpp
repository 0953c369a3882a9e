#include "common/filesystem/models/filesmodel.h"
#include "common/filesystem/models/operationsmodel.h"
#include "common/filesystem/models/pathmodel.h"
#include "common/qml/qmlmanager.h"
#include "common/qml/qmlthumbnailprovider.h"
#include "common/session/settings/configuration.h"
#include "common/ui/clicktest/nameditem.h"
#include "common/ui/style/stylesheet.h"
#include "common/views/files/filesview.h"
#include "tests/common/ui/testsettings.h"
#include "tests/support/fakefiles.h"
#include "tests/support/patience.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QQuickItem>
#include <QQuickWidget>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <ctime>
#include <malloc.h>

using namespace vantrel;
using namespace vantrel::test;

/// Stands for the session: its properties are the models of both sides.
class FilesSession : public QObject
{
    Q_OBJECT
    Q_PROPERTY(vantrel::FilesModel* localFilesModel MEMBER local CONSTANT)
    Q_PROPERTY(vantrel::FilesModel* serverFilesModel MEMBER server NOTIFY serverFilesModelChanged)
    Q_PROPERTY(vantrel::PathModel* localFilesPathModel MEMBER localPaths CONSTANT)
    Q_PROPERTY(vantrel::PathModel* serverFilesPathModel MEMBER serverPaths CONSTANT)
    Q_PROPERTY(vantrel::OperationsModel* operationsModel MEMBER operations CONSTANT)
    Q_PROPERTY(vantrel::FileSystemOperations* fileSystemOperations MEMBER queue CONSTANT)

public:
    FilesModel* local = nullptr;
    FilesModel* server = nullptr;
    PathModel* localPaths = nullptr;
    PathModel* serverPaths = nullptr;
    OperationsModel* operations = nullptr;
    FileSystemOperations* queue = nullptr;

Q_SIGNALS:
    void serverFilesModelChanged();
};

class TestFilesView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        StyleSheet::apply(*qApp);
        m_local = std::make_unique<FakeFiles>(QStringLiteral("Local files"));
        m_server = std::make_unique<FakeFiles>(QStringLiteral("Server files"));
        for (const char* name :
             {"Act 1/", "Act 2/x.mov", "Opening loop.mov", "Walk-in.mp4", "Logo.png", "Bell.wav"})
            m_local->add(QStringLiteral("/home/op/Videos/") + QString::fromLatin1(name), 123456789);
        m_server->add(QStringLiteral("/shows/"));
        for (const char* name :
             {"Opening loop.mov", "Interview with a name that is far too long for any column.mov"})
            m_server->add(QStringLiteral("/") + QString::fromLatin1(name), 987654321);
        m_provider.local = m_local.get();
        m_provider.server = m_server.get();
        m_localModel = std::make_unique<FilesModel>(m_local.get(), &m_homes);
        m_serverModel = std::make_unique<FilesModel>(m_server.get());
        m_localModel->setDirectoryPath(QStringLiteral("/home/op/Videos/"));
        m_serverModel->setDirectoryPath(QStringLiteral("/"));
        m_localPaths = std::make_unique<PathModel>(m_local.get());
        m_localPaths->append(QStringLiteral("/home/op"));
        m_operations = std::make_unique<OperationsModel>(&m_queue);
        m_session.local = m_localModel.get();
        m_session.server = m_serverModel.get();
        m_session.localPaths = m_localPaths.get();
        m_session.operations = m_operations.get();
        m_session.queue = &m_queue;
        FilesView::Sources sources;
        sources.session = &m_session;
        sources.provider = &m_provider;
        sources.operations = &m_queue;
        sources.homeLocations = &m_homes;
        m_view = std::make_unique<FilesView>(sources);
        m_view->resize(1268, 600);
        m_popup = new QWidget(m_view.get());
        m_popup->setObjectName(QStringLiteral("NotificationPresenter"));
        m_popup->hide();
        QVERIFY(!m_view->quickWidget());
        const std::size_t memory = mallinfo2().uordblks;
        const std::clock_t start = std::clock();
        m_view->show();
        // Of this process alone: what else runs on the machine does not count.
        const auto work = (std::clock() - start) * 1000 / CLOCKS_PER_SEC;
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
        const std::size_t taken = (mallinfo2().uordblks - memory) / 1024 / 1024;
        qInfo("the tab was made in %ld ms and took %zu MB", static_cast<long>(work), taken);
        QVERIFY(work < 2 * 120 * slowness); // twice what it may cost where the processor runs at its pace
        QVERIFY(taken < 40);
        QCOMPARE(m_view->quickWidget()->status(), QQuickWidget::Ready);
    }
    void cleanupTestCase()
    {
        m_view.reset();
        QMLManager::instance()->deinitialize();
        qApp->setStyleSheet({});
    }
    void cleanup() { m_queue.calls.clear(); }

    /// As the scene graph hands the address on: what is behind its host.
    void picturesKeepTheirAddress()
    {
        for (const char* path : {"/02 Opening.mp4", "/Act 1/100 % & more=#?.mov", "/%2F [1] ö.png"}) {
            const QUrl media = QUrl::fromLocalFile(QString::fromUtf8(path));
            const QUrl picture(QmlThumbnailProvider::generateUniqueUrl(media));
            const QString id = picture.toString(QUrl::RemoveScheme | QUrl::RemoveAuthority).mid(1);
            QString file;
            QVERIFY(QmlThumbnailProvider::parseIdInUrl(QUrl(id), file));
            QCOMPARE(QUrl(file).toLocalFile(), media.toLocalFile());
        }
    }

    /// Nothing is wider than what holds it, at any size of text; each control has a name and a tooltip.
    void layoutHolds_data()
    {
        QTest::addColumn<int>("text");
        QTest::addColumn<QSize>("size");
        for (int text = 0; text < 4; ++text) {
            for (const QSize size : {QSize(1268, 600), QSize(948, 430), QSize(1900, 960)})
                QTest::addRow("text %d, %dx%d", text, size.width(), size.height()) << text << size;
        }
    }
    void layoutHolds()
    {
        QFETCH(int, text);
        QFETCH(QSize, size);
        m_settings->setValue(TEXT_SIZE, QVariant::fromValue(static_cast<FontSize>(text)));
        m_view->resize(size);
        QTRY_COMPARE(root()->width(), qreal(size.width()));
        QTRY_VERIFY2(faults().isEmpty(), qPrintable(faults().join(u'\n')));
        takePicture(QStringLiteral("%1-%2").arg(text).arg(size.width()));
    }

    void keysDoWhatListsDo()
    {
        m_settings->setValue(TEXT_SIZE, QVariant::fromValue(FontSize::Medium));
        m_view->resize(1268, 600);
        QQuickItem* list = item("local-files-list");
        list->forceActiveFocus();
        key(Qt::Key_Home);
        key(Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(summary(), QStringLiteral("2 of 6 selected"));
        key(Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(m_queue.calls,
                 (QStringList{"copy /home/op/Videos/Act 1/ /", "copy /home/op/Videos/Act 2/ /"}));
        QTest::keyClick(m_view->quickWidget(), 'o'); // type-ahead
        key(Qt::Key_C, Qt::ControlModifier);
        QVERIFY(summary().startsWith(QLatin1String("1 of 6")));
        item("server-files-list")->forceActiveFocus();
        key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_queue.calls.last(), QStringLiteral("copy /home/op/Videos/Opening loop.mov /"));
        list->forceActiveFocus();
        key(Qt::Key_A, Qt::ControlModifier);
        QVERIFY(summary().startsWith(QLatin1String("6 of 6")));
        key(Qt::Key_Home);
        key(Qt::Key_Return);
        QCOMPARE(m_localModel->directoryPath(), QStringLiteral("/home/op/Videos/Act 1/"));
        key(Qt::Key_Backspace);
        QCOMPARE(m_localModel->directoryPath(), QStringLiteral("/home/op/Videos/"));
        key(Qt::Key_End);
        key(Qt::Key_F2);
        QTRY_VERIFY(item("local-files-rename-field"));
        QTest::keyClicks(m_view->quickWidget(), QStringLiteral("Doors"));
        key(Qt::Key_Return);
        QCOMPARE(m_queue.calls.last(), QStringLiteral("rename /home/op/Videos/Walk-in.mp4 Doors.mp4"));
    }

    /// What was taken up from a server is not looked for on another one.
    void pasteKnowsItsServer()
    {
        FakeFiles another(QStringLiteral("Server files"));
        another.add(QStringLiteral("/shows/"));
        FilesModel itsFiles(&another);
        itsFiles.setDirectoryPath(QStringLiteral("/"));
        item("server-files-list")->forceActiveFocus();
        key(Qt::Key_Home);
        key(Qt::Key_C, Qt::ControlModifier);
        item("local-files-list")->forceActiveFocus();
        for (FilesModel* const now : {&itsFiles, m_serverModel.get()}) {
            m_session.server = now;
            Q_EMIT m_session.serverFilesModelChanged();
            key(Qt::Key_V, Qt::ControlModifier);
            QCOMPARE(m_queue.calls.size(), now == &itsFiles ? 0 : 1);
        }
    }

    /// The selection stays with what it means when rows are sorted anew.
    void sortingKeepsTheSelection()
    {
        item("local-files-list")->forceActiveFocus();
        key(Qt::Key_End);
        QMetaObject::invokeMethod(item("local-files-header-name"), "clicked");
        key(Qt::Key_C, Qt::ControlModifier);
        item("server-files-list")->forceActiveFocus();
        key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_queue.calls.last(), QStringLiteral("copy /home/op/Videos/Walk-in.mp4 /"));
        QMetaObject::invokeMethod(item("local-files-header-name"), "clicked");
    }

    void menusOfferWhatCanBeDone()
    {
        item("local-files-list")->forceActiveFocus();
        key(Qt::Key_End);
        key(Qt::Key_Menu);
        QTRY_VERIFY(overlay("local-files-menu-rename") && overlay("local-files-menu-rename")->isVisible());
        QVERIFY(overlay("local-files-menu-copy")->isEnabled());
        QVERIFY(!overlay("local-files-menu-open")->isEnabled());
        takePicture(QStringLiteral("menu"));
        key(Qt::Key_Escape);
        QTRY_VERIFY(!overlay("local-files-menu-rename") || !overlay("local-files-menu-rename")->isVisible());
        QVERIFY(item("local-files-list")->hasActiveFocus());
        QMetaObject::invokeMethod(item("local-files-places-button"), "clicked");
        QTRY_VERIFY(overlay("local-files-place0"));
        takePicture(QStringLiteral("places"));
        QMetaObject::invokeMethod(overlay("local-files-place0"), "triggered");
        QCOMPARE(m_localModel->directoryPath(), QStringLiteral("/home/op/"));
        key(Qt::Key_Escape);
        m_localModel->setDirectoryPath(QStringLiteral("/home/op/Videos/"));
    }

    void conflictsAskInTheTab()
    {
        FakeTransfer* transfer = m_queue.transfer(0);
        QVERIFY(!item("conflict-skip-button")->isVisible());
        item("transfers-panel")->setProperty("isShrunk", true);
        transfer->run();
        transfer->askConflict({QStringLiteral("/Act 1"), true});
        QTRY_VERIFY(item("conflict-skip-button")->isVisible());
        m_queue.transfer(1)->abort();
        m_queue.transfer(2)->run();
        m_queue.transfer(2)->setTotalSizeBytes(123456789);
        m_queue.transfer(2)->setTransferredBytes(43456789);
        m_queue.transfer(2)->setProgress(0.35);
        QTRY_COMPARE(m_operations->index(2, 0).data(OperationsModel::ProgressRole).toDouble(), 0.35);
        takePicture(QStringLiteral("conflict"));
        QMetaObject::invokeMethod(item("conflict-skip-button"), "clicked");
        QTRY_VERIFY(!item("conflict-skip-button")->isVisible());
    }

    void popUpLeavesTheTransfersInSight()
    {
        const double height = item("transfers-list")->height();
        m_popup->setGeometry(100, m_view->height() - 30, 300, 30);
        m_popup->show();
        QTRY_COMPARE(item("transfers-list")->height(), height - 30);
        m_popup->hide();
        QTRY_COMPARE(item("transfers-list")->height(), height);
    }

    void withoutAServerTheTabSaysSo()
    {
        item("local-files-list")->forceActiveFocus();
        key(Qt::Key_End);
        m_session.server = nullptr;
        Q_EMIT m_session.serverFilesModelChanged();
        QTRY_VERIFY(!item("local-files-copy-button")->isEnabled());
        item("local-files-list")->forceActiveFocus();
        const auto before = m_queue.calls;
        key(Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(m_queue.calls, before);
        m_session.server = m_serverModel.get();
        Q_EMIT m_session.serverFilesModelChanged();
        QTRY_VERIFY(item("local-files-copy-button")->isEnabled());
    }

private:
    QQuickItem* root() const { return m_view->quickWidget()->rootObject(); }
    /// What menus are made of lies beside the root object.
    QQuickItem* overlay(const char* name) const
    {
        return namedItem(m_view->quickWidget()->quickWindow()->contentItem(), QLatin1String(name));
    }
    /// To look at, where HALCYRA_PICTURES names a folder.
    void takePicture(const QString& name) const
    {
        const QString folder = qEnvironmentVariable("HALCYRA_PICTURES");
        if (folder.isEmpty())
            return;
        QSignalSpy frames(m_view->quickWidget()->quickWindow(), &QQuickWindow::afterRendering);
        frames.wait(200);
        m_view->grab().save(QStringLiteral("%1/files-%2.png").arg(folder, name));
    }
    QQuickItem* item(const char* name) const { return namedItem(root(), QLatin1String(name)); }
    QString summary() const { return item("local-files-summary")->property("text").toString(); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(m_view->quickWidget(), key, modifiers);
        QCoreApplication::processEvents();
    }

    QStringList faults() const
    {
        QStringList all;
        collect(root(), all);
        return all;
    }
    void collect(const QQuickItem* from, QStringList& all) const
    {
        for (const QQuickItem* child : from->childItems()) {
            if (!child->isVisible() || child->width() <= 0)
                continue;
            const QString name = child->objectName();
            const QRectF place = child->mapRectToItem(root(), child->boundingRect());
            if (name.endsWith(QLatin1String("-button"))) {
                if (!root()->boundingRect().contains(place))
                    all.append(QStringLiteral("cut: %1").arg(name));
                if (child->width() + 0.5 < child->implicitWidth())
                    all.append(QStringLiteral("squeezed: %1").arg(name));
                if (child->property("tip").toString().isEmpty())
                    all.append(QStringLiteral("no tooltip: %1").arg(name));
            }
            collect(child, all);
        }
    }

    TestSettings m_settings;
    FakeHomes m_homes;
    FakeProvider m_provider;
    FakeOperations m_queue;
    FilesSession m_session;
    std::unique_ptr<FakeFiles> m_local;
    std::unique_ptr<FakeFiles> m_server;
    std::unique_ptr<FilesModel> m_localModel;
    std::unique_ptr<FilesModel> m_serverModel;
    std::unique_ptr<PathModel> m_localPaths;
    std::unique_ptr<OperationsModel> m_operations;
    std::unique_ptr<FilesView> m_view;
    QWidget* m_popup = nullptr; // of the view
};

HALCYRA_TEST(TestFilesView)
#include "test_filesview.moc"
