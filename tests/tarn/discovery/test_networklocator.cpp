#include "tarn/discovery/networklocator.h"
#include "tests/support/testmain.h"
#include "tests/tarn/logcapture.h"

#include <QTest>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/multicast.hpp>

#include <thread>

using namespace vantrel;

namespace {

const auto loopback = boost::asio::ip::make_address("127.0.0.1");

quint16 freePort()
{
    boost::asio::io_context loop;
    const boost::asio::ip::udp::socket socket(loop, {loopback, 0});
    return socket.local_endpoint().port();
}

/// The peers on the loopback interface; those of the machine's other networks are none of the test's.
std::vector<NetworkPeer> found(quint16 port)
{
    NetworkLocator locator(port);
    if (!locator.findPeers(300))
        return {};
    auto peers = locator.currentPeers();
    std::erase_if(peers, [](const NetworkPeer& peer) { return peer.address != "127.0.0.1"; });
    return peers;
}

} // namespace

class TestNetworkLocator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsAServer();
    void findsNothingWhereNothingIs();
    void passesOverNonsense();
    void answersOnlyWhatItIsAsked();
    void refusesAForeignAddress();
};

void TestNetworkLocator::findsAServer()
{
    const quint16 port = freePort();
    boost::asio::io_context loop;
    NetworkResponder responder(loop, {{"name", "stage-left \"A\""}, {"version", "1.4.2"}});
    QVERIFY(responder.start(loopback, port));
    std::thread thread([&] { loop.run(); });
    const auto peers = found(port);
    const auto again = found(port);
    loop.stop();
    thread.join();
    QCOMPARE(peers,
             std::vector<NetworkPeer>({{"127.0.0.1", {{"name", "stage-left \"A\""}, {"version", "1.4.2"}}}}));
    QCOMPARE(again, peers);
}

void TestNetworkLocator::findsNothingWhereNothingIs()
{
    NetworkLocator locator(freePort());
    QVERIFY(locator.findPeers(50));
    QVERIFY(locator.currentPeers().empty());
}

void TestNetworkLocator::passesOverNonsense()
{
    // A responder that answers each question by rubbish, and by one answer with some in it.
    const quint16 port = freePort();
    boost::asio::io_context loop;
    using boost::asio::ip::udp;
    udp::socket socket(loop, udp::v4());
    socket.set_option(boost::asio::socket_base::reuse_address(true));
    socket.bind({boost::asio::ip::make_address(discovery::group), port});
    socket.set_option(boost::asio::ip::multicast::join_group(
        boost::asio::ip::make_address_v4(discovery::group), loopback.to_v4()));
    std::thread thread([&] {
        char buffer[2000];
        udp::endpoint asker;
        socket.receive_from(boost::asio::buffer(buffer), asker);
        for (const std::string& answer :
             {std::string(), std::string("\xff\xfe"), std::string("[]"), std::string("{\"peer\":7}"),
              std::string(1400, '['), std::string("{\"peer\":{\"name\":\"x\",\"version\":3,\"more\":{}}}")})
            socket.send_to(boost::asio::buffer(answer), asker);
    });
    const auto peers = found(port);
    thread.join();
    QCOMPARE(peers, std::vector<NetworkPeer>({{"127.0.0.1", {{"name", "x"}}}}));
}

void TestNetworkLocator::answersOnlyWhatItIsAsked()
{
    const quint16 port = freePort();
    boost::asio::io_context loop;
    NetworkResponder responder(loop, {{"name", "x"}});
    QVERIFY(responder.start(loopback, port));
    std::thread thread([&] { loop.run(); });

    using boost::asio::ip::udp;
    boost::asio::io_context here;
    udp::socket asker(here, udp::endpoint(loopback, 0));
    asker.set_option(boost::asio::ip::multicast::outbound_interface(loopback.to_v4()));
    const udp::endpoint group(boost::asio::ip::make_address(discovery::group), port);
    for (const std::string& question :
         {std::string("hello"), std::string("{\"locate\":2}"), std::string("[1]"), std::string(1400, 'x'),
          std::string("{\"locate\":1}")})
        asker.send_to(boost::asio::buffer(question), group);
    char buffer[2000];
    udp::endpoint from;
    const std::size_t count = asker.receive_from(boost::asio::buffer(buffer), from);
    QCOMPARE(std::string(buffer, count), std::string("{\"peer\":{\"name\":\"x\"}}"));
    QCOMPARE(asker.available(), std::size_t{0});
    loop.stop();
    thread.join();
}

void TestNetworkLocator::refusesAForeignAddress()
{
    const test::LogCapture log;
    boost::asio::io_context loop;
    NetworkResponder responder(loop, {});
    QVERIFY(!responder.start(boost::asio::ip::make_address("192.0.2.77"), freePort()));
    QCOMPARE(log.lines().size(), 1);
}

HALCYRA_TEST(TestNetworkLocator)
#include "test_networklocator.moc"
