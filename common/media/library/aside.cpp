#include "common/media/library/aside.h"

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace vantrel::aside {

QThreadPool& pool()
{
    static QThreadPool pool;
    return pool;
}

void giveWay()
{
#ifdef Q_OS_LINUX
    constexpr int niceness = 10;
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), niceness);
#endif
}

} // namespace vantrel::aside
