#include "ombra/base/asidethread.h"

#include <boost/asio/post.hpp>

#include <sys/resource.h>
#include <unistd.h>
#include <utility>

namespace vantrel::ombra {

AsideThread::AsideThread()
    : boost::asio::thread_pool(1)
{
    constexpr int niceness = 10;
    boost::asio::post(*this, [] { ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), niceness); });
}

/// What other threads made is freed under the lock of their memory: who gave way while holding it would hold
/// them up as well, and the pictures with them.
void letGo(std::shared_ptr<const void> remains)
{
    static boost::asio::thread_pool thread(1);
    boost::asio::post(thread, [remains = std::move(remains)]() mutable { remains.reset(); });
}

} // namespace vantrel::ombra
