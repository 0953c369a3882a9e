#include "tarn/net/eventfactory.h"
#include "tests/support/testmain.h"

#include <QTest>
#include <nlohmann/json.hpp>

using namespace vantrel;

class TestEvents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makesEvents_data();
    void makesEvents();
};

void TestEvents::makesEvents_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("url");
    QTest::newRow("metadata") << QByteArray(R"({"type":"metadata-changed","mediaUrl":"file:///a b.mp4"})")
                              << QByteArray("metadata-changed") << QByteArray("file:///a b.mp4");
    QTest::newRow("removed") << QByteArray(R"({"type":"metadata-removed","mediaUrl":""})")
                             << QByteArray("metadata-removed") << QByteArray("");
    QTest::newRow("another") << QByteArray(R"({"type":"lamp-lit"})") << QByteArray("lamp-lit")
                             << QByteArray();
    QTest::newRow("metadata of nothing")
        << QByteArray(R"({"type":"metadata-added"})") << QByteArray() << QByteArray();
    QTest::newRow("a number for a type") << QByteArray(R"({"type":7})") << QByteArray() << QByteArray();
    QTest::newRow("no object") << QByteArray(R"(["type"])") << QByteArray() << QByteArray();
    QTest::newRow("null") << QByteArray("null") << QByteArray() << QByteArray();
}

void TestEvents::makesEvents()
{
    QFETCH(QByteArray, json);
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, url);
    const auto event = EventFactory::getInstance().create(nlohmann::json::parse(json.toStdString()));
    QCOMPARE(event != nullptr, !type.isNull());
    if (!event)
        return;
    QCOMPARE(event->getTypeName(), type.toStdString());
    const auto metadata = std::dynamic_pointer_cast<MetadataEvent>(event);
    QCOMPARE(metadata != nullptr, !url.isNull());
    if (metadata)
        QCOMPARE(metadata->getMediaUrl(), url.toStdString());
}

HALCYRA_TEST(TestEvents)
#include "test_events.moc"
