#include "ombra/rest/eventteller.h"

#include "tests/support/testmain.h"

#include <QTest>
#include <boost/asio/executor_work_guard.hpp>

#include <vector>

using namespace vantrel;
using namespace vantrel::ombra;

/// What an edit changed is told in the order of the edits, though a large message takes its time.
class EventTellerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheOrder()
    {
        boost::asio::io_context io;
        const auto stays = boost::asio::make_work_guard(io);
        std::vector<std::string> sent;
        EventTeller teller(io, [&](const EventTeller::Message& message) { sent.push_back(*message); });
        teller.tell(patchOf(1), 1);
        QCOMPARE(sent.size(), std::size_t(1)); // in no time, and at once
        teller.tell(patchOf(20'000), 2);
        teller.tell(patchOf(1), 3);
        QCOMPARE(sent.size(), std::size_t(1));
        while (sent.size() < 3)
            io.run_one();
        teller.tell(patchOf(1), 4);
        QCOMPARE(sent.size(), std::size_t(4));
        for (std::size_t i = 0; i < sent.size(); ++i)
            QVERIFY(sent[i].find("\"revision\":" + std::to_string(i + 1)) != std::string::npos);
    }

private:
    static std::shared_ptr<const Patch> patchOf(int slots_)
    {
        Json records = Json::object();
        for (int i = 1; i <= slots_; ++i)
            records.set(std::to_string(i), Json::object({{"name", "slot"}}));
        Patch patch;
        patch.append({PatchOpType::Add, Path("/collections/1"), {}, Json::object({{"slots", records}})});
        return std::make_shared<const Patch>(std::move(patch));
    }
};

HALCYRA_TEST(EventTellerTest)
#include "eventtellertest.moc"
