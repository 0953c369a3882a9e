#pragma once

#include <boost/asio/thread_pool.hpp>

#include <memory>

namespace vantrel::ombra {

/// One thread for what takes long and nobody on air waits for. It gives way to the threads that show
/// pictures, on a machine whose cores are all busy.
class AsideThread : public boost::asio::thread_pool
{
public:
    AsideThread();
};

/// Lets go of what may be the last of something large on a thread of its own: its many small pieces of memory
/// take their time. Any thread.
void letGo(std::shared_ptr<const void> remains);

/// The same of a value that is replaced.
template <typename T>
void replaceAside(T& value, T other)
{
    auto remains = std::make_shared<const T>(value);
    value = std::move(other);
    letGo(std::move(remains));
}

} // namespace vantrel::ombra
