#include "base/MainThread.h"

#include <cstdio>
#include <cstdlib>

namespace korvo {

void MainThread::assertCurrent() const
{
    if (isCurrent())
        return;
    std::fputs("korvo: published state was touched off the main thread\n", stderr);
    std::abort();
}

} // namespace korvo
