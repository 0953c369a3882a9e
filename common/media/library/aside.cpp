#include "common/media/library/aside.h"

#include <memory>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace vantrel::aside {

namespace {

std::unique_ptr<QThreadPool> poolOf(int threads)
{
    auto pool = std::make_unique<QThreadPool>();
    pool->setMaxThreadCount(threads);
    return pool;
}

} // namespace

QThreadPool& pool()
{
    static QThreadPool pool;
    return pool;
}

QThreadPool& files()
{
    constexpr int most = 8; // what waits for a disk takes no processor
    static const std::unique_ptr<QThreadPool> pool = poolOf(most);
    return *pool;
}

QThreadPool& edits()
{
    static const std::unique_ptr<QThreadPool> pool = poolOf(1);
    return *pool;
}

QThreadPool& remover()
{
    static const std::unique_ptr<QThreadPool> pool = poolOf(1);
    return *pool;
}

void giveWay()
{
#ifdef Q_OS_LINUX
    constexpr int niceness = 10;
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), niceness);
#endif
}

} // namespace vantrel::aside
