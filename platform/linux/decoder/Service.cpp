#include "platform/linux/decoder/Service.h"

#include "platform/linux/decoder/ProcessFence.h"
#include "platform/linux/images/DecoderProtocol.h"
#include "platform/linux/images/OutsideDecoding.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <new>
#include <optional>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace korvo {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Case = ImageError::Case;

constexpr auto mostTime = 120s; // the largest raw files take a tenth of it
constexpr std::size_t longestReason = 1000;

enum class End { whole, ended, timedOut };

/// Reads a message, until its end or that of the one who writes it.
End readMessage(int descriptor, std::string& text, std::optional<Clock::time_point> deadline = {})
{
    std::array<char, 4096> piece;
    while (!isWholeMessage(text)) {
        const auto left
            = deadline ? std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()) : 0ms;
        if (deadline && left <= 0ms)
            return End::timedOut;
        pollfd wait{descriptor, POLLIN, 0};
        if (poll(&wait, 1, deadline ? static_cast<int>(left.count()) : -1) <= 0)
            continue;
        const auto count = read(descriptor, piece.data(), piece.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return End::ended;
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
    return End::whole;
}

void send(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const auto sent = write(descriptor, text.data(), text.size());
        if (sent < 0 && errno != EINTR)
            return; // nobody waits any more
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(sent, 0)));
    }
}

/// Cut between two characters.
std::string shortened(std::string text)
{
    auto length = std::min(text.size(), longestReason);
    while (length < text.size() && length > 0 && (text[length] & 0xC0) == 0x80)
        --length;
    text.resize(length);
    return text;
}

DecoderAnswer failure(const DecoderRequest& request, Case which, std::string reason)
{
    return {request.number, DecoderAnswer::Failure{which, shortened(std::move(reason))}};
}

DecoderAnswer decode(const DecoderRequest& asked, const PosixFile& memory)
try {
    auto picture = storeImage(decodeAnyPicture(asked.file, asked.image, {}), memory);
    picture.note = shortened(std::move(picture.note));
    return {asked.number, std::move(picture)};
} catch (const ImageError& error) {
    return failure(asked, error.which(), error.reason());
} catch (const std::bad_alloc&) {
    return failure(asked, Case::memory, "decoding it needs too much memory");
} catch (const std::exception& error) {
    return failure(asked, Case::damaged, error.what());
}

/// Where requests come from, and answers go to.
struct Streams {
    int requests;
    int answers;
};

/// The worker's part. Its parent has one answer from it at the most, whatever happens to it afterwards, and
/// nobody else anything.
[[noreturn]] void work(const DecoderRequest& request, const PosixFile& memory, const PosixFile& answers,
    const Streams& ofParent, pid_t parent)
{
    close(ofParent.requests);
    close(ofParent.answers);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) // it ended before we could ask to be told
        _exit(EXIT_FAILURE);
    fenceIn();
    const auto text = decode(request, memory).encoded();
    send(answers.descriptor(), text);
    _exit(EXIT_SUCCESS);
}

/// What became of a worker that has not answered.
DecoderAnswer answerFor(const DecoderRequest& request, End end, int status)
{
    if (end == End::timedOut)
        return failure(request, Case::timedOut,
            "decoding it took more than " + std::to_string(mostTime.count()) + " seconds and was given up");
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) // by the system, which lacks memory
        return failure(request, Case::memory, "decoding it needs too much memory");
    return failure(request, Case::crashed, "the decoder failed on it: the file may be damaged");
}

/// Decodes in a process of its own. The memory is opened now, while the one who asks holds it for certain.
std::string answerTo(const DecoderRequest& request, const Streams& streams)
{
    const auto memory = openSharedMemory(request.memory);
    std::array<int, 2> ends{-1, -1};
    if (!memory || pipe2(ends.data(), O_CLOEXEC) != 0)
        return failure(request, Case::memory, "there is no memory to decode it into").encoded();
    const PosixFile from(ends[0]);
    PosixFile to(ends[1]);
    const pid_t service = getpid(), worker = fork();
    if (worker < 0)
        return failure(request, Case::memory, "there is not enough memory to decode it").encoded();
    if (worker == 0)
        work(request, memory, to, streams, service);
    to = {};
    std::string text;
    const auto end = readMessage(from.descriptor(), text, Clock::now() + mostTime);
    if (end != End::ended)
        kill(worker, SIGKILL);
    int status = 0;
    while (waitpid(worker, &status, 0) < 0 && errno == EINTR) { }
    return end == End::whole && !textsOf(text).empty() ? text : answerFor(request, end, status).encoded();
}

} // namespace

int serveDecoding(int requests, int answers)
try {
    std::string request; // nobody asks for the next before the answer to one
    while (readMessage(requests, request) == End::whole)
        send(answers, answerTo(DecoderRequest::decoded(std::exchange(request, {})), {requests, answers}));
    return EXIT_SUCCESS;
} catch (const std::invalid_argument&) { // nobody that we could answer
    return EXIT_FAILURE;
}

} // namespace korvo
