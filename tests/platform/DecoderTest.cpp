#include "platform/linux/decoder/ProcessFence.h"
#include "platform/linux/images/DecoderProtocol.h"
#include "platform/linux/images/SystemImageReader.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace korvo {

namespace {

namespace fs = std::filesystem;

const fs::path heicFile = fs::path(KORVO_TEST_DATA) / "images/plain.heic";

/// A program that stands for the decoder on its first run only; later it is the decoder itself.
fs::path decoderThatFirst(const TemporaryFolder& folder, const std::string& does)
{
    const auto program = folder.write("decoder",
        "#!/bin/sh\n[ -e '" + (folder / "ran").string() + "' ] && exec '" KORVO_DECODER "'\ntouch '"
            + (folder / "ran").string() + "'\nhead -c 1 >/dev/null\n" + does + "\ncat >/dev/null\n");
    fs::permissions(program, fs::perms::owner_all);
    return program;
}

std::optional<ImageError::Case> failure(SystemImageReader& reader)
{
    try {
        reader.read(heicFile, {}, {});
        return std::nullopt;
    } catch (const ImageError& error) {
        return error.which();
    }
}

class CountingLauncher : public ProcessLauncher {
public:
    ProcessOutput run(
        const std::vector<std::string>& command, std::string_view input, const std::stop_token& stop) override
    {
        return system_->run(command, input, stop);
    }
    std::unique_ptr<RunningProcess> start(const std::vector<std::string>& command) override
    {
        ++started;
        return system_->start(command);
    }

    int started = 0;

private:
    std::unique_ptr<ProcessLauncher> system_ = systemProcessLauncher();
};

} // namespace

TEST(Decoder, oneThatIsOutOfStepIsReplacedBeforeItIsBelieved)
{
    const auto launcher = systemProcessLauncher();
    const auto answer = DecoderAnswer{0, DecoderAnswer::Failure{ImageError::Case::damaged, "once"}}.encoded();
    for (const auto& [does, first] : {std::pair<std::string, ImageError::Case>(
                                          "cat answer; sleep 0.1; cat answer", ImageError::Case::damaged),
             {"cat answer answer >both; cat both", ImageError::Case::crashed},
             {"echo hello", ImageError::Case::crashed}, {"printf ffffffff", ImageError::Case::crashed},
             {"exit", ImageError::Case::crashed}}) {
        SCOPED_TRACE(does);
        const TemporaryFolder folder;
        folder.write("answer", answer);
        SystemImageReader reader(
            *launcher, decoderThatFirst(folder, "cd '" + folder.path().string() + "'; " + does));
        EXPECT_EQ(failure(reader), first);
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_EQ(failure(reader), std::nullopt);
    }
}

TEST(Decoder, whatItSaysOfAnImageIsBelievedOnlyAsFarAsTheMemoryGoes)
{
    using Picture = DecoderAnswer::Picture;
    const auto launcher = systemProcessLauncher();
    const auto answered = [](const Picture& picture) { return DecoderAnswer{0, picture}.encoded(); };
    const auto image = [](const std::string& width, const std::string& kind, const std::string& full) {
        return message({"0", "image", width, "4", kind, "0", full, "4", ""});
    };
    for (const auto& [what, answer] :
        {std::pair("nothing in the memory", answered({4, 4, false, false, 4, 4})),
            {"gigabytes of pixels", answered({32768, 16384, true, true, 32768, 16384})},
            {"more pixels than may be", answered({32768, 16385, false, false, 4, 4})},
            {"no pixels", image("0", "0", "4")}, {"fewer than none", image("-4", "0", "4")},
            {"no number", image("4x", "0", "4")}, {"beyond all numbers", image("4294967300", "0", "4")},
            {"another kind", image("4", "2", "4")}, {"no full size", image("4", "0", "0")},
            {"a text too many", message({"0", "image", "4", "4", "0", "0", "4", "4", "", ""})},
            {"an unknown failure", message({"0", "failure", "10", "why"})}}) {
        SCOPED_TRACE(what);
        const TemporaryFolder folder;
        folder.write("answer", answer);
        SystemImageReader reader(
            *launcher, decoderThatFirst(folder, "cat '" + (folder / "answer").string() + "'"));
        EXPECT_EQ(failure(reader), ImageError::Case::crashed);
        EXPECT_EQ(failure(reader), std::nullopt) << "it is asked again, or another is";
    }
}

TEST(Decoder, writesIntoMemoryOnlyAndNeverIntoAFile)
{
    const TemporaryFolder folder;
    const auto original = folder.write("original.jpg", "a photo");
    const auto launcher = systemProcessLauncher();
    const auto opened = openFile(original, O_RDONLY);
    const auto name = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(opened.descriptor());
    for (const fs::path& memory : {fs::path(name), original, folder / "nothing"}) {
        const auto decoder = launcher->start({KORVO_DECODER});
        DecoderRequest request;
        request.number = 7;
        request.file = heicFile;
        request.memory = memory;
        const auto out = decoder->ask(
            request.encoded(), [](const ProcessOutput& output) { return isWholeMessage(output.out); }, {});
        const auto answer = DecoderAnswer::decoded(out.out);
        EXPECT_EQ(answer.number, 7);
        EXPECT_EQ(std::get<DecoderAnswer::Failure>(answer.result).which, ImageError::Case::memory);
        EXPECT_EQ(readFile(original), "a photo");
    }
}

TEST(Decoder, servesTheThreadsThatComeOneAfterTheOther)
{
    CountingLauncher launcher;
    SystemImageReader reader(launcher, KORVO_DECODER);
    for (int i = 0; i < 3; ++i)
        std::thread([&] { EXPECT_EQ(failure(reader), std::nullopt); }).join();
    EXPECT_EQ(launcher.started, 1);
}

TEST(ProcessFence, readingIsAllThatIsLeft)
{
    const TemporaryFolder folder;
    const auto path = folder.write("original.jpg", "a photo");
    const auto other = folder / "other.jpg";
    const auto open = openFile(path, O_RDONLY);
    const pid_t child = fork();
    if (child == 0) {
        fenceIn();
        int allowed = 0;
        for (const int flags : {O_WRONLY, O_RDWR, O_RDONLY | O_TRUNC, O_RDWR | O_CREAT})
            allowed += ::open(path.c_str(), flags, 0600) >= 0;
        allowed += unlink(path.c_str()) == 0;
        allowed += rename(path.c_str(), other.c_str()) == 0;
        allowed += truncate(path.c_str(), 0) == 0;
        allowed += fchmod(open.descriptor(), 0777) == 0;
        allowed += socket(AF_UNIX, SOCK_STREAM, 0) >= 0;
        allowed += execl("/bin/true", "true", nullptr) == 0;
        const pid_t made = fork();
        if (made == 0)
            _exit(0);
        allowed += made > 0;
        std::thread([] {}).join();
        _exit(openFile(path, O_RDONLY) ? allowed : 100);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(readFile(path), "a photo");
}

} // namespace korvo
