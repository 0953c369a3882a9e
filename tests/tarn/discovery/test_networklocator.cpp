#include "tarn/discovery/networklocator.h"
#include "tarn/discovery/networkresponder.h"
#include "tests/support/testmain.h"
#include "tests/tarn/logcapture.h"

#include <QDeadlineTimer>
#include <QTest>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/multicast.hpp>
#include <boost/asio/ip/udp.hpp>

#include <algorithm>
#include <cstring>
#include <memory>
#include <net/if.h>
#include <optional>
#include <sched.h>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>

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
std::vector<NetworkPeer> here(const NetworkLocator& locator)
{
    auto peers = locator.currentPeers();
    std::erase_if(peers, [](const NetworkPeer& peer) {
        return !boost::asio::ip::make_address(peer.address).is_loopback();
    });
    std::ranges::sort(peers, {}, &NetworkPeer::address);
    return peers;
}

std::vector<NetworkPeer> found(quint16 port)
{
    NetworkLocator locator(port);
    return locator.findPeers(200) ? here(locator) : std::vector<NetworkPeer>();
}

/// Servers that answer on the loopback interface, until it goes.
class Servers
{
public:
    explicit Servers(quint16 port)
        : m_port(port)
    {
    }
    ~Servers() { stop(); }

    bool add(const std::string& address, discovery::Attributes attributes)
    {
        m_responders.push_back(std::make_unique<NetworkResponder>(
            m_loop, [attributes = std::move(attributes)] { return attributes; }));
        return m_responders.back()->start(boost::asio::ip::make_address(address), m_port);
    }
    void start()
    {
        m_thread = std::thread([this] { m_loop.run(); });
    }
    void stop()
    {
        m_loop.stop();
        if (m_thread.joinable())
            m_thread.join();
        m_responders.clear();
    }

private:
    quint16 m_port;
    boost::asio::io_context m_loop;
    std::vector<std::unique_ptr<NetworkResponder>> m_responders;
    std::thread m_thread;
};

} // namespace

class TestNetworkLocator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsServers_data();
    void findsServers();
    void followsWhoComesAndGoes();
    void tellsWhatIsNewBeforeTheEnd();
    void keepsToItsBounds();
    void passesOverNonsense();
    void answersOnlyWhatItIsAsked();
    void refusesAForeignAddress();
    void answersOnANetworkThatComesLater();
};

void TestNetworkLocator::findsServers_data()
{
    QTest::addColumn<std::vector<NetworkPeer>>("servers"); // by the address that they are bound to
    QTest::addColumn<std::vector<NetworkPeer>>("shown");
    const NetworkPeer one{"127.0.0.1", {{"name", "stage-left \"A\""}, {"version", "1.4.2"}, {"id", "1"}}};
    const NetworkPeer two{"127.0.0.7", {{"name", "b"}, {"id", "2"}}};
    const NetworkPeer six{"::1", {{"name", "six"}, {"id", "6"}}};
    const NetworkPeer otherPort{"127.0.0.1", {{"name", "c"}, {"id", "3"}, {"link", "11070"}}};
    using Peers = std::vector<NetworkPeer>;
    QTest::newRow("nobody") << Peers{} << Peers{};
    QTest::newRow("one") << Peers{one} << Peers{one};
    QTest::newRow("several addresses") << Peers{two, one} << Peers{one, two};
    QTest::newRow("IPv6 only") << Peers{six} << Peers{six};
    QTest::newRow("both") << Peers{six, two} << Peers{two, six};
    QTest::newRow("two of one address") << Peers{one, otherPort} << Peers{one, otherPort};
    QTest::newRow("one at two addresses") << Peers{{"::1", one.attributes}, one} << Peers{one};
    QTest::newRow("everywhere") << Peers{{"::", one.attributes}} << Peers{one};
    QTest::newRow("too much to say") << Peers{{"127.0.0.1", {{"name", std::string(1400, 'x')}}}, two}
                                     << Peers{two};
}

void TestNetworkLocator::findsServers()
{
    QFETCH(std::vector<NetworkPeer>, servers);
    QFETCH(std::vector<NetworkPeer>, shown);
    const quint16 port = freePort();
    Servers all(port);
    for (const NetworkPeer& server : servers)
        QVERIFY(all.add(server.address, server.attributes));
    all.start();
    QCOMPARE(found(port), shown);
}

void TestNetworkLocator::followsWhoComesAndGoes()
{
    const quint16 port = freePort();
    const NetworkPeer stays{"127.0.0.1", {{"id", "1"}, {"link", "11060"}}};
    const NetworkPeer goes{"127.0.0.2", {{"id", "2"}, {"link", "11060"}}};
    Servers staying(port);
    QVERIFY(staying.add(stays.address, stays.attributes));
    staying.start();
    NetworkLocator locator(port);
    {
        Servers going(port);
        QVERIFY(going.add(goes.address, goes.attributes));
        going.start();
        QVERIFY(locator.findPeers(200));
        QCOMPARE(here(locator), std::vector({stays, goes}));
    }
    QVERIFY(locator.findPeers(200));
    QCOMPARE(here(locator), std::vector({stays}));
    // One that was started again has another id, and is still one.
    staying.stop();
    NetworkPeer again = stays;
    again.attributes["id"] = "3";
    Servers anew(port);
    QVERIFY(anew.add(again.address, again.attributes));
    anew.start();
    bool isSeenTwice = false;
    QVERIFY(locator.findPeers(200, [&](bool) {
        isSeenTwice = isSeenTwice || here(locator).size() != 1;
        return true;
    }));
    QCOMPARE(here(locator), std::vector({again}));
    QVERIFY(!isSeenTwice);
}

void TestNetworkLocator::tellsWhatIsNewBeforeTheEnd()
{
    const quint16 port = freePort();
    NetworkLocator locator(port);
    std::optional<Servers> late;
    bool isFound = false;
    // It starts when the first question has long been asked, and ends the search as soon as it is seen.
    QVERIFY(!locator.findPeers(4000, [&](bool isNews) {
        if (!late) {
            late.emplace(port);
            if (!late->add("127.0.0.1", {{"name", "late"}}))
                return false;
            late->start();
        }
        isFound = isNews && here(locator).size() == 1;
        return !isFound;
    }));
    QVERIFY(isFound);
}

void TestNetworkLocator::keepsToItsBounds()
{
    // Who floods searches from every address of the loopback interface fills the list and no more; a server
    // that was in it before stays, and one that comes later is found.
    const quint16 port = freePort();
    Servers servers(port);
    QVERIFY(servers.add("127.0.0.1", {{"name", "real"}, {"id", "1"}}));
    servers.start();
    NetworkLocator locator(port);
    QVERIFY(locator.findPeers(100));
    QCOMPARE(here(locator).size(), std::size_t{1});

    using boost::asio::ip::udp;
    boost::asio::io_context loop;
    udp::socket ear(loop, udp::v4());
    ear.set_option(boost::asio::socket_base::reuse_address(true));
    ear.bind({boost::asio::ip::make_address(discovery::group), port});
    ear.set_option(boost::asio::ip::multicast::join_group(boost::asio::ip::make_address_v4(discovery::group),
                                                          loopback.to_v4()));
    udp::endpoint asker;
    ear.non_blocking(true);
    unsigned int sent = 0;
    const auto flood = [&](bool) {
        char question[100];
        boost::system::error_code nothing;
        ear.receive_from(boost::asio::buffer(question), asker, 0, nothing);
        for (int i = 0; i < 100 && asker.port() != 0; ++i, ++sent) {
            udp::socket forger(loop, {boost::asio::ip::address_v4(0x7f010000U + sent), 0});
            std::string attributes = "\"name\":\"forged\",\"id\":\"" + std::to_string(sent + 100) + "\"";
            for (int k = 0; k < 60; ++k)
                attributes += ",\"a" + std::to_string(k) + "\":\"\"";
            forger.send_to(boost::asio::buffer("{\"peer\":{" + attributes + "}}"), asker, 0, nothing);
        }
        return true;
    };
    QVERIFY(locator.findPeers(400, flood));
    QVERIFY(sent > 256);
    Servers late(port);
    QVERIFY(late.add("127.127.0.1", {{"name", "late"}, {"id", "2"}}));
    late.start();
    QVERIFY(locator.findPeers(400, flood));
    const auto peers = locator.currentPeers();
    QCOMPARE(peers.size(), std::size_t{256});
    const auto isThere = [&](const char* name) {
        return std::ranges::any_of(peers,
                                   [&](const auto& peer) { return peer.attributes.at("name") == name; });
    };
    QVERIFY(isThere("real"));
    QVERIFY(isThere("late"));
    QVERIFY(std::ranges::all_of(peers, [](const auto& peer) { return peer.attributes.size() == 2; }));
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
    Servers servers(port);
    QVERIFY(servers.add("127.0.0.1", {{"name", "x"}}));
    servers.start();

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
}

/// In a network of its own, whose one interface is up only once the server is there.
void TestNetworkLocator::answersOnANetworkThatComesLater()
{
    const NetworkPeer server{"127.0.0.1", {{"id", "1"}}};
    bool isAlone = false, wasHeard = true;
    std::vector<NetworkPeer> seen;
    std::thread([&] {
        isAlone = ::unshare(CLONE_NEWNET) == 0;
        if (!isAlone)
            return;
        constexpr quint16 port = 11062; // nobody else is there
        Servers late(port);
        wasHeard = late.add("0.0.0.0", server.attributes);
        late.start();
        ifreq loopback{};
        std::strcpy(loopback.ifr_name, "lo");
        loopback.ifr_flags = IFF_UP | IFF_RUNNING;
        const int any = ::socket(AF_INET, SOCK_DGRAM, 0);
        ::ioctl(any, SIOCSIFFLAGS, &loopback);
        ::close(any);
        for (const QDeadlineTimer limit(10000); seen.empty() && !limit.hasExpired();)
            seen = found(port);
    }).join();
    if (!isAlone)
        QSKIP("only root makes a network of its own");
    QVERIFY(!wasHeard);
    QCOMPARE(seen, std::vector<NetworkPeer>{server});
}

void TestNetworkLocator::refusesAForeignAddress()
{
    const test::LogCapture log;
    Servers servers(freePort());
    QVERIFY(!servers.add("192.0.2.77", {}));
    QVERIFY(!servers.add("2001:db8::77", {}));
    QCOMPARE(log.lines().size(), 2);
}

HALCYRA_TEST(TestNetworkLocator)
#include "test_networklocator.moc"
