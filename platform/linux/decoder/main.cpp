#include "platform/linux/decoder/Service.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

/// The decoder process: decodes the files that it is asked for on standard input, until that ends.
int main()
{
    // It serves all threads of who started it, and does not end with one of them.
    prctl(PR_SET_PDEATHSIG, 0);
    // What the libraries print must not get between the answers, nor fill the memory of who reads it.
    const int answers = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nothing, STDOUT_FILENO);
    dup2(nothing, STDERR_FILENO);
    return korvo::serveDecoding(STDIN_FILENO, answers);
}
