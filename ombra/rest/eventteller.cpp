#include "ombra/rest/eventteller.h"

#include "ombra/rest/eventtext.h"

#include <boost/asio/post.hpp>

#include <algorithm>
#include <utility>

namespace vantrel::ombra {

namespace {

/// Whether the message is written in no time.
bool isSmall(const Patch& difference)
{
    constexpr std::size_t few = 500;     // operations
    constexpr std::size_t members = 200; // of what they bring
    return difference.size() <= few && std::ranges::all_of(difference, [](const PatchOp& op) {
               const Json* inside = op.value.find("slots");
               inside = inside ? inside : op.value.find("entries");
               return (inside ? *inside : op.value).size() <= members;
           });
}

} // namespace

EventTeller::EventTeller(boost::asio::io_context& io, std::function<void(const Message&)> send)
    : m_io(io)
    , m_send(std::move(send))
{
}

EventTeller::~EventTeller()
{
    m_alive.reset();
    m_writer.join();
}

void EventTeller::tell(const std::shared_ptr<const Patch>& difference, std::uint64_t revision)
{
    const auto write = [difference, revision] {
        return std::make_shared<const std::string>(eventStreamMessage(*difference, revision));
    };
    if (m_waiting == 0 && isSmall(*difference))
        return m_send(write());
    ++m_waiting;
    boost::asio::post(m_writer, [this, alive = std::weak_ptr(m_alive), write] {
        boost::asio::post(m_io, [this, alive, message = write()] {
            if (alive.expired())
                return;
            --m_waiting;
            m_send(message);
        });
    });
}

} // namespace vantrel::ombra
