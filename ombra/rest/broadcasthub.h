#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// A client that takes messages as they come.
class Subscriber
{
public:
    virtual ~Subscriber() = default;
    virtual void send(const std::shared_ptr<const std::string>& message) = 0;
};

/// The open streams of one kind. Holds them weakly: a connection lives by its own pending operations.
class BroadcastHub
{
public:
    void add(const std::shared_ptr<Subscriber>& subscriber) { m_subscribers.push_back(subscriber); }

    void broadcast(const std::shared_ptr<const std::string>& message)
    {
        std::erase_if(m_subscribers, [](const auto& weak) { return weak.expired(); });
        const auto all = m_subscribers; // one that fails may go meanwhile
        for (const auto& weak : all) {
            if (const auto subscriber = weak.lock())
                subscriber->send(message);
        }
    }

    /// The most bytes that may wait for one slow reader.
    static constexpr std::size_t maxWaiting = 64u * 1024 * 1024;

private:
    std::vector<std::weak_ptr<Subscriber>> m_subscribers;
};

} // namespace vantrel::ombra
