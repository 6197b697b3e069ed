#include "platform/linux/ChildProcess.h"

#include "platform/ProcessLauncher.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace korvo {

namespace {

using namespace std::chrono_literals;

constexpr auto timeToTidyUp = 2s;
constexpr auto timeBetweenLooks = 5ms;
constexpr int unknownStatus = 255;

[[noreturn]] void failToLaunch(const std::string& program, int reason)
{
    throw ProcessError(ProcessError::Case::launch,
        program + " can't be started: " + std::generic_category().message(reason));
}

struct Pipe {
    PosixFile readEnd;
    PosixFile writeEnd;
};

Pipe makePipe(const std::string& program)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        failToLaunch(program, errno);
    return {PosixFile(ends[0]), PosixFile(ends[1])};
}

PosixFile unblocked(PosixFile file)
{
    fcntl(file.descriptor(), F_SETFL, fcntl(file.descriptor(), F_GETFL) | O_NONBLOCK);
    return file;
}

std::vector<char*> argumentPointers(const std::vector<std::string>& command)
{
    std::vector<char*> pointers;
    for (const auto& argument : command) {
        if (argument.find('\0') != std::string::npos)
            failToLaunch(command.front(), EINVAL);
        pointers.push_back(const_cast<char*>(argument.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// A descriptor that is its own target already would keep its close-on-exec mark under dup2.
void connect(int from, int to)
{
    if (from == to)
        fcntl(to, F_SETFD, 0);
    else
        dup2(from, to);
}

/// The child's part, in which only calls are allowed that are safe after a fork: becomes the program, or
/// says through `failure` why not.
[[noreturn]] void becomeProgram(
    char* const* arguments, pid_t parent, const std::array<int, 3>& streams, int failure)
{
    setpgid(0, 0);
    sigset_t none;
    sigemptyset(&none);
    for (const int signal : {SIGINT, SIGTERM, SIGPIPE, SIGHUP, SIGQUIT})
        std::signal(signal, SIG_DFL);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    for (int stream = 0; stream < 3; ++stream)
        connect(streams[static_cast<std::size_t>(stream)], stream);
    prctl(PR_SET_PDEATHSIG, SIGINT);
    if (getppid() == parent) // else it ended before we could ask to be told
        execv(arguments[0], arguments);
    const int reason = errno;
    (void)!write(failure, &reason, sizeof reason);
    _exit(127);
}

/// Why the program could not be started; nothing once it runs, which closes the other end.
std::optional<int> startFailure(const PosixFile& readEnd)
{
    int reason = 0;
    ssize_t count = 0;
    do
        count = read(readEnd.descriptor(), &reason, sizeof reason);
    while (count < 0 && errno == EINTR);
    return count == sizeof reason ? std::optional(reason) : std::nullopt;
}

int statusOf(int waited)
{
    return WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command)
{
    const auto arguments = argumentPointers(command);
    Pipe input = makePipe(command.front()), output = makePipe(command.front());
    Pipe errors = makePipe(command.front()), failure = makePipe(command.front());
    const pid_t parent = getpid();
    id_ = fork();
    if (id_ < 0)
        failToLaunch(command.front(), errno);
    if (id_ == 0)
        becomeProgram(arguments.data(), parent,
            {input.readEnd.descriptor(), output.writeEnd.descriptor(), errors.writeEnd.descriptor()},
            failure.writeEnd.descriptor());
    setpgid(id_, id_); // in both processes, since either may come first
    failure.writeEnd = PosixFile();
    if (const auto reason = startFailure(failure.readEnd)) {
        wait();
        failToLaunch(command.front(), *reason);
    }
    in = unblocked(std::move(input.writeEnd));
    out = unblocked(std::move(output.readEnd));
    err = unblocked(std::move(errors.readEnd));
    ended = PosixFile(static_cast<int>(syscall(SYS_pidfd_open, id_, 0)));
}

ChildProcess::~ChildProcess()
{
    end();
}

int ChildProcess::wait()
{
    int waited = 0;
    while (!status_)
        if (waitpid(id_, &waited, 0) == id_)
            status_ = statusOf(waited);
        else if (errno != EINTR) // whoever started us ignores the ends of children, and the system with it
            status_ = unknownStatus;
    return *status_;
}

std::optional<int> ChildProcess::statusIfEnded()
{
    int waited = 0;
    if (status_)
        return status_;
    if (const auto child = waitpid(id_, &waited, WNOHANG); child == id_)
        status_ = statusOf(waited);
    else if (child < 0 && errno != EINTR)
        status_ = unknownStatus;
    return status_;
}

void ChildProcess::end()
{
    if (statusIfEnded())
        return;
    kill(-id_, SIGINT);
    const auto deadline = std::chrono::steady_clock::now() + timeToTidyUp;
    while (!statusIfEnded() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(timeBetweenLooks);
    kill(-id_, SIGKILL); // the whole group, also what the program may have left behind
    wait();
}

} // namespace korvo
