#include "ombra/base/memory.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace vantrel::ombra {

/// No thread is to share its memory's lock with one that gives way, which may hold it for long. What is as
/// large as a picture comes from the system and goes back there at once: each medium has threads of its own,
/// whose arenas would keep the holes between its pictures, and grow by the hour.
void arrangeMemory()
{
#ifdef __GLIBC__
    mallopt(M_ARENA_MAX, 64);
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
#endif
}

void giveBackMemory()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

} // namespace vantrel::ombra
