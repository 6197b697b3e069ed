#include "app/decoder/Service.h"

#include "platform/linux/images/DecoderProtocol.h"
#include "platform/linux/images/OutsideDecoding.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <new>
#include <optional>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace korvo {

namespace {

constexpr unsigned mostSeconds = 120; // the largest raw files take a tenth of it
constexpr rlim_t mostResult = rlim_t(8) << 30; // in shared memory
constexpr std::size_t longestRequest = 64 << 10, longestReason = 1000;

/// The next message; nothing at the end of the input.
std::optional<std::string> nextRequest(int requests, std::string& text)
{
    std::array<char, 4096> piece;
    while (!isWholeMessage(text)) {
        const auto count = read(requests, piece.data(), piece.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0 || text.size() > longestRequest)
            return std::nullopt;
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
    return std::exchange(text, {}); // nobody asks for the next before the answer to this one
}

/// In one piece, which a pipe takes as a whole or not at all.
void answer(int answers, const DecoderAnswer& result)
{
    alarm(0); // one answer and no more
    const auto text = result.encoded();
    while (write(answers, text.data(), text.size()) < 0 && errno == EINTR) { }
}

void answer(int answers, ImageError::Case which, std::string reason)
{
    reason.resize(std::min(reason.size(), longestReason));
    answer(answers, {DecoderAnswer::Failure{which, std::move(reason)}});
}

/// Enough for the largest raw files, and never more than half of what the machine has.
rlim_t mostMemory()
{
    const auto installed
        = static_cast<rlim_t>(sysconf(_SC_PHYS_PAGES)) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
    return std::min(installed / 2, rlim_t(8) << 30);
}

void limit(__rlimit_resource resource, rlim_t most)
{
    const rlimit both{most, most};
    setrlimit(resource, &both);
}

void limitYourself()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_CPU, mostSeconds);
    limit(RLIMIT_FSIZE, mostResult);
#ifndef __SANITIZE_ADDRESS__ // whose shadow is larger than any limit
    limit(RLIMIT_AS, mostMemory());
#endif
    alarm(mostSeconds);
}

void decode(const std::string& request, int answers)
try {
    const auto asked = DecoderRequest::decoded(request);
    auto image = decodeAnyPicture(asked.file, asked.image, {});
    storePixels(image, asked.memory);
    image.note.resize(std::min(image.note.size(), longestReason));
    answer(answers, {std::move(image)});
} catch (const ImageError& error) {
    answer(answers, error.which(), error.reason());
} catch (const std::bad_alloc&) {
    answer(answers, ImageError::Case::memory, "decoding it needs too much memory");
} catch (const std::exception& error) {
    answer(answers, ImageError::Case::damaged, error.what());
}

/// What became of a process that could not answer itself.
void answerFor(int status, int answers)
{
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
        return;
    const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    if (signal == SIGALRM || signal == SIGXCPU)
        answer(answers, ImageError::Case::timedOut,
            "decoding it took more than " + std::to_string(mostSeconds) + " seconds and was given up");
    else
        answer(answers, ImageError::Case::crashed, "the decoder failed on it: the file may be damaged");
}

} // namespace

int serveDecoding(int requests, int answers)
{
    std::string input;
    while (const auto request = nextRequest(requests, input)) {
        const pid_t worker = fork();
        if (worker == 0) {
            limitYourself();
            decode(*request, answers);
            _exit(0);
        }
        int status = 0;
        if (worker < 0)
            answer(answers, ImageError::Case::memory, "there is not enough memory to decode it");
        else if (waitpid(worker, &status, 0) == worker)
            answerFor(status, answers);
    }
    return EXIT_SUCCESS;
}

} // namespace korvo
