#include "platform/ThreadPriority.h"

#include <sys/resource.h>
#include <unistd.h>

namespace korvo {

namespace {

constexpr int niceness = 10;

} // namespace

void giveWayToOthers()
{
    // On Linux this is a property of the single thread, and its reads and writes wait behind those of others.
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), niceness);
}

} // namespace korvo
