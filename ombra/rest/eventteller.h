#pragma once

#include "ombra/base/asidethread.h"
#include "tarn/json/patch.h"

#include <boost/asio/io_context.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace vantrel::ombra {

/// Tells the event streams what each edit changed, in the order of the edits. A large message is written on a
/// thread of its own, so that nobody else waits for it. The thread of the io_context.
class EventTeller
{
public:
    using Message = std::shared_ptr<const std::string>;

    EventTeller(boost::asio::io_context& io, std::function<void(const Message&)> send);
    ~EventTeller();
    EventTeller(const EventTeller&) = delete;
    EventTeller& operator=(const EventTeller&) = delete;

    void tell(const std::shared_ptr<const Patch>& difference, std::uint64_t revision);

private:
    boost::asio::io_context& m_io;
    std::function<void(const Message&)> m_send;
    std::size_t m_waiting = 0; // messages that are being written
    std::shared_ptr<int> m_alive =
        std::make_shared<int>(0); // what comes back from the thread holds it weakly
    AsideThread m_writer;
};

} // namespace vantrel::ombra
