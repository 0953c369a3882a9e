#include "common/ui/clicktest/clicktestserver.h"

#include "common/ui/toolkit/ztmenu.h"
#include "tests/support/testmain.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTableView>
#include <QTcpSocket>
#include <QTest>
#include <QVBoxLayout>

using namespace vantrel;

class ClickTestServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_window = std::make_unique<QWidget>();
        auto* layout = new QVBoxLayout(m_window.get());
        m_button = new QPushButton(QStringLiteral("Go"), m_window.get());
        m_edit = new QLineEdit(m_window.get());
        m_table = new QTableView(m_window.get());
        m_model = new QStandardItemModel(2, 2, m_table);
        m_model->setItem(1, 0, new QStandardItem(QStringLiteral("cell")));
        m_table->setModel(m_model);
        m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
        for (int i = 0; i < 2; ++i) {
            auto* twin = new QLabel(QStringLiteral("twin %1").arg(i), m_window.get());
            twin->setObjectName(QStringLiteral("twin"));
            layout->addWidget(twin);
        }
        m_button->setObjectName(QStringLiteral("go"));
        m_button->setProperty("mode", QStringLiteral("preview"));
        m_edit->setObjectName(QStringLiteral("field"));
        m_table->setObjectName(QStringLiteral("table"));
        layout->addWidget(m_button);
        layout->addWidget(m_edit);
        layout->addWidget(m_table);
        m_window->resize(500, 400);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_window->activateWindow();
        QTRY_VERIFY(m_window->isActiveWindow());
        m_server = std::make_unique<ClickTestServer>(nullptr, quint16(0));
        m_socket = std::make_unique<QTcpSocket>();
        m_socket->connectToHost(QHostAddress::LocalHost, m_server->port());
        QTRY_COMPARE(m_socket->state(), QAbstractSocket::ConnectedState);
    }

    void cleanup()
    {
        m_socket.reset();
        m_server.reset();
        m_window.reset();
    }

    void describesAWidget()
    {
        const QJsonArray reply = ask({{"objectName", "go"}});
        QCOMPARE(reply.size(), 1);
        const QJsonObject go = reply.at(0).toObject();
        const QPoint centre = m_button->mapToGlobal(m_button->rect().center());
        QCOMPARE(go.value(QLatin1String("className")).toString(), QStringLiteral("QPushButton"));
        QCOMPARE(go.value(QLatin1String("parentClassName")).toString(), QStringLiteral("QWidget"));
        QCOMPARE(go.value(QLatin1String("text")).toString(), QStringLiteral("Go"));
        QCOMPARE(go.value(QLatin1String("checked")).toBool(true), false);
        QCOMPARE(go.value(QLatin1String("property_mode")).toString(), QStringLiteral("preview"));
        QCOMPARE(go.value(QLatin1String("global_x")).toInt(), centre.x());
        QCOMPARE(go.value(QLatin1String("global_y")).toInt(), centre.y());
        QCOMPARE(go.value(QLatin1String("width")).toInt(), m_button->width());
        QVERIFY(go.value(QLatin1String("visible")).toBool());
    }

    void limitsTheMatches()
    {
        QCOMPARE(ask({{"objectName", "twin"}}).size(), 1);
        QCOMPARE(ask({{"objectName", "twin"}, {"maxResults", 2}}).size(), 2);
        QCOMPARE(ask({{"className", "QLineEdit"}, {"maxResults", 9}}).size(), 1);
        QCOMPARE(ask({{"objectName", "nobody"}}).size(), 0);
        // An open request takes the first widgets met; a table among them brings its cells along.
        const QJsonArray open = ask({{"maxResults", 3}});
        QCOMPARE(std::ranges::count_if(open,
                                       [](const QJsonValue& item) {
                                           return item.toObject().contains(QLatin1String("className"));
                                       }),
                 3);
    }

    void describesCellsAndMenus()
    {
        const QJsonArray table = ask({{"objectName", "table"}});
        QCOMPARE(table.size(), 1 + 4);
        const QJsonObject cell = table.at(3).toObject();
        QCOMPARE(cell.value(QLatin1String("objectName")).toString(), QStringLiteral("table-row1-col0"));
        QCOMPARE(cell.value(QLatin1String("text")).toString(), QStringLiteral("cell"));

        ZTMenu menu(m_window.get());
        menu.setObjectName(QStringLiteral("menu"));
        QAction* action = menu.addAction(QStringLiteral("Open"));
        action->setObjectName(QStringLiteral("menu-open"));
        QCOMPARE(ask({{"objectName", "menu"}}).size(), 2);
        const QJsonObject entry = ask({{"objectName", "menu-open"}}).at(0).toObject();
        QCOMPARE(entry.value(QLatin1String("text")).toString(), QStringLiteral("Open"));
        QVERIFY(!entry.value(QLatin1String("visible")).toBool());
        menu.popup(m_window->mapToGlobal(QPoint(20, 20)));
        QTRY_VERIFY(menu.isVisible());
        QSignalSpy triggered(action, &QAction::triggered);
        click(ask({{"objectName", "menu-open"}}).at(0).toObject(), "click");
        QTRY_COMPARE(triggered.size(), 1);
    }

    void clicksAndDoubleClicks()
    {
        QSignalSpy clicked(m_button, &QPushButton::clicked);
        click(ask({{"objectName", "go"}}).at(0).toObject(), "click");
        QCOMPARE(clicked.size(), 1);
        QSignalSpy doubled(m_table, &QTableView::doubleClicked);
        click(ask({{"objectName", "table"}}).at(3).toObject(), "double_click");
        QCOMPARE(doubled.size(), 1);
        QCOMPARE(doubled.at(0).at(0).toModelIndex(), m_model->index(1, 0));
    }

    void withoutAllCoordinatesAMouseDoesNothing()
    {
        QSignalSpy clicked(m_button, &QPushButton::clicked);
        const QPoint at = m_button->mapToGlobal(m_button->rect().center());
        QCOMPARE(ask({{"operation", "click"}, {"objectName", "go"}}).size(), 0);
        QCOMPARE(ask({{"operation", "click"}, {"global_x", at.x()}, {"global_y", at.y()}}).size(), 0);
        QCOMPARE(clicked.size(), 0);
    }

    void pressesKeysWhereTheFocusIs()
    {
        ask({{"operation", "focus"}, {"objectName", "field"}});
        QTRY_VERIFY(m_edit->hasFocus());
        for (const char* key : {"h", "X", "7"})
            ask({{"operation", "key_press"}, {"keyName", key}});
        QCOMPARE(m_edit->text(), QStringLiteral("hX7"));
        ask({{"operation", "key_press"}, {"keyName", "ShiftLeft"}});
        QCOMPARE(m_edit->selectedText(), QStringLiteral("7"));
        ask({{"operation", "key_press"}, {"keyName", "CtrlA"}});
        QCOMPARE(m_edit->selectedText(), QStringLiteral("hX7"));
        ask({{"operation", "key_press"}, {"keyName", "NoSuchKey"}});
        QCOMPARE(m_edit->text(), QStringLiteral("hX7"));
    }

    void triggersShortcutsThatNobodyClaims()
    {
        QShortcut undo(QKeySequence(QStringLiteral("Ctrl+Z")), m_window.get());
        QSignalSpy activated(&undo, &QShortcut::activated);
        ask({{"operation", "focus"}, {"objectName", "go"}});
        ask({{"operation", "key_press"}, {"keyName", "CtrlZ"}});
        QCOMPARE(activated.size(), 1);
        ask({{"operation", "focus"}, {"objectName", "field"}}); // a field undoes its own text
        ask({{"operation", "key_press"}, {"keyName", "CtrlZ"}});
        QCOMPARE(activated.size(), 1);
    }

    void answersNonsenseAndGoesOn_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("no JSON") << QByteArray("hello");
        QTest::newRow("cut short") << QByteArray("{\"operation\":");
        QTest::newRow("an array") << QByteArray("[1,2]");
        QTest::newRow("binary") << QByteArray("\0\xff\xfe\x01", 4);
    }

    void answersNonsenseAndGoesOn()
    {
        QFETCH(QByteArray, bytes);
        m_socket->write(bytes);
        QTRY_COMPARE(m_socket->bytesAvailable(), 2);
        QCOMPARE(m_socket->readAll(), QByteArray("{}"));
        QCOMPARE(m_socket->state(), QAbstractSocket::ConnectedState);
        QCOMPARE(ask({{"objectName", "go"}}).size(), 1);
    }

    void standsWrongTypesInARequest()
    {
        QCOMPARE(ask({{"maxResults", "many"}, {"objectName", "go"}}).size(), 1);
        QCOMPARE(ask({{"operation", 7}, {"objectName", "go"}}).size(), 0);
        QCOMPARE(ask({{"maxResults", -4}, {"objectName", "go"}}).size(), 0);
    }

private:
    using Request = QList<std::pair<const char*, QJsonValue>>;

    QJsonArray ask(const Request& request)
    {
        QJsonObject json;
        for (const auto& [key, value] : request)
            json.insert(QLatin1String(key), value);
        m_socket->write(QJsonDocument(json).toJson(QJsonDocument::Compact));
        QByteArray text;
        const bool answered = QTest::qWaitFor([&] {
            text += m_socket->readAll();
            return QJsonDocument::fromJson(text).isArray();
        });
        if (!answered)
            QTest::qFail("no reply", __FILE__, __LINE__);
        return QJsonDocument::fromJson(text).array();
    }

    void click(const QJsonObject& target, const char* operation)
    {
        Request request = {{"operation", operation}};
        for (const char* key : {"global_x", "global_y", "local_x", "local_y"})
            request.append({key, target.value(QLatin1String(key))});
        ask(request);
    }

    std::unique_ptr<QWidget> m_window;
    QPushButton* m_button = nullptr;
    QLineEdit* m_edit = nullptr;
    QTableView* m_table = nullptr;
    QStandardItemModel* m_model = nullptr;
    std::unique_ptr<ClickTestServer> m_server;
    std::unique_ptr<QTcpSocket> m_socket;
};

HALCYRA_TEST(ClickTestServerTest)
#include "clicktestserver.moc"
