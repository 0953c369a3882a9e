// Finding servers: how soon fifty are in the list, how soon one that ends has left it, and what the list
// costs under a flood of forged answers.
#include "bench/row.h"
#include "common/session/link/locatormodel.h"
#include "tarn/discovery/networkresponder.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTableView>
#include <QTest>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/multicast.hpp>
#include <boost/asio/ip/udp.hpp>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace vantrel;
using boost::asio::ip::address_v4;
using boost::asio::ip::udp;

namespace {

constexpr int rounds = 10;
constexpr int count = 50;
constexpr int forgedASecond = 10000;
constexpr int floodMilliseconds = 20000;

quint16 freePort()
{
    boost::asio::io_context loop;
    return udp::socket(loop, {address_v4::loopback(), 0}).local_endpoint().port();
}

/// Servers on 127.0.0.1 and the addresses after it, until it goes.
class Servers
{
public:
    Servers(quint16 port, int number)
    {
        for (int i = 0; i < number; ++i) {
            const address_v4 at(address_v4::loopback().to_uint() + static_cast<unsigned int>(i));
            m_responders.push_back(std::make_unique<NetworkResponder>(m_loop, [i] {
                return discovery::Attributes{
                    {"id", std::to_string(i)}, {"link", "11060"}, {"name", "stage-" + std::to_string(i)},
                    {"program", "Walk-in"},    {"state", "play"}, {"version", "0.1.0"}};
            }));
            m_isStarted = m_responders.back()->start(at, port) && m_isStarted;
        }
        m_thread = std::thread([this] { m_loop.run(); });
    }
    ~Servers()
    {
        m_loop.stop();
        m_thread.join();
    }
    bool isStarted() const { return m_isStarted; }

private:
    boost::asio::io_context m_loop;
    std::vector<std::unique_ptr<NetworkResponder>> m_responders;
    std::thread m_thread;
    bool m_isStarted = true;
};

bool waitForRows(const LocatorModel& model, int number)
{
    return QTest::qWaitFor([&] { return model.rowCount() == number; }, 20000);
}

/// The list is opened while the servers are there.
bool measureOpening(quint16 port)
{
    qint64 longest = 0;
    const Servers servers(port, count);
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer clock;
        clock.start();
        const LocatorModel model(nullptr, port);
        if (!servers.isStarted() || !waitForRows(model, count))
            return false;
        longest = std::max(longest, clock.elapsed());
    }
    bench::row("discovery/50-servers", "the limit of 2 s, longest of ten", double(longest), 2000, "ms", 1);
    return true;
}

/// Servers start and end at another moment of a search or its pause each round.
bool measureChanges(quint16 port)
{
    qint64 longestStart = 0;
    qint64 longestEnd = 0;
    const LocatorModel model(nullptr, port);
    for (int round = 0; round < rounds; ++round) {
        QTest::qWait(round * 2000 / rounds);
        QElapsedTimer clock;
        clock.start();
        auto servers = std::make_unique<Servers>(port, count);
        if (!servers->isStarted() || !waitForRows(model, count))
            return false;
        longestStart = std::max(longestStart, clock.elapsed());
        QTest::qWait(round * 2000 / rounds);
        servers.reset();
        clock.start();
        if (!waitForRows(model, 0))
            return false;
        longestEnd = std::max(longestEnd, clock.elapsed());
    }
    bench::row("discovery/50-servers-start", "the limit of 2 s, longest of ten", double(longestStart), 2000,
               "ms", 1);
    bench::row("discovery/servers-end", "the limit of 5 s, longest of ten", double(longestEnd), 5000, "ms",
               1);
    return true;
}

double cpuMilliseconds()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval& time) {
        return double(time.tv_sec) * 1000 + double(time.tv_usec) / 1000;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

double residentMegabytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() * double(::sysconf(_SC_PAGESIZE)) / 1e6;
}

/// Of a list on the screen, with what it costs when nobody answers.
bool measureFlood(quint16 port)
{
    QTableView view;
    LocatorModel model(nullptr, port);
    view.setModel(&model);
    view.resize(600, 300);
    view.show();
    QTest::qWait(3000);
    const double memory = residentMegabytes();
    QProcess forger;
    forger.start(QCoreApplication::applicationFilePath(), {QStringLiteral("forge"), QString::number(port)});
    if (!forger.waitForStarted() || !QTest::qWaitFor([&] { return model.rowCount() > 0; }, 20000))
        return false;
    const double before = cpuMilliseconds();
    QTest::qWait(floodMilliseconds);
    const double share = (cpuMilliseconds() - before) * 100 / floodMilliseconds;
    forger.terminate();
    forger.waitForFinished();
    bench::row("discovery/flood-processor", "the limit of 5 % of a core", share, 5, "%", 1);
    bench::row("discovery/flood-memory", "the limit of 10 MB", std::max(residentMegabytes() - memory, 0.1),
               10, "MB", 1);
    return true;
}

/// Hears the searches on the loopback interface, and floods the one that asked last from ever other
/// addresses.
int forge(quint16 port)
{
    boost::asio::io_context loop;
    udp::socket ear(loop, udp::v4());
    ear.set_option(boost::asio::socket_base::reuse_address(true));
    const auto group = boost::asio::ip::make_address_v4(discovery::group);
    ear.bind({group, port});
    ear.set_option(boost::asio::ip::multicast::join_group(group, address_v4::loopback()));
    udp::endpoint asker;
    char question[100];
    ear.receive_from(boost::asio::buffer(question), asker);
    ear.non_blocking(true);
    const std::string padding(200, 'x');
    unsigned int sent = 0;
    for (auto next = std::chrono::steady_clock::now();; next += std::chrono::milliseconds(10)) {
        std::this_thread::sleep_until(next);
        boost::system::error_code nothing;
        ear.receive_from(boost::asio::buffer(question), asker, 0, nothing);
        for (int i = 0; i < forgedASecond / 100; ++i, ++sent) {
            std::string answer = discovery::answerText({{"id", std::to_string(sent)},
                                                        {"link", "11060"},
                                                        {"name", "forged" + std::to_string(sent)},
                                                        {"program", padding},
                                                        {"version", "9"}});
            sockaddr_in to{};
            std::memcpy(&to, asker.data(), sizeof to);
            iovec data{answer.data(), answer.size()};
            alignas(cmsghdr) char control[CMSG_SPACE(sizeof(in_pktinfo))]{};
            msghdr message{&to, sizeof to, &data, 1, control, sizeof control, 0};
            cmsghdr* header = CMSG_FIRSTHDR(&message);
            header->cmsg_level = IPPROTO_IP;
            header->cmsg_type = IP_PKTINFO;
            header->cmsg_len = CMSG_LEN(sizeof(in_pktinfo));
            in_pktinfo from{};
            from.ipi_spec_dst.s_addr = htonl(0x7f010000U + sent % 0xf00000U);
            std::memcpy(CMSG_DATA(header), &from, sizeof from);
            ::sendmsg(ear.native_handle(), &message, 0);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "forge") == 0)
        return forge(quint16(std::atoi(argv[2])));
    const QApplication app(argc, argv);
    const quint16 port = freePort();
    return measureOpening(port) && measureChanges(port) && measureFlood(port) ? 0 : 1;
}
