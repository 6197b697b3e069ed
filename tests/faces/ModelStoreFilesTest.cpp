#include "platform/PartFile.h"
#include "tests/faces/StoreUnderTest.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <system_error>

namespace korvo {

namespace {

using Case = ModelStore::State::Case;
using Seen = std::vector<std::string>;

/// Lets no file grow beyond some size, as a full disk does.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t most)
    {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{most, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~SizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;

private:
    rlimit before_{};
    void (*handler_)(int) = SIG_DFL;
};

void fetch(StoreUnderTest& test)
{
    test.store->fetch();
    test.finish();
}

} // namespace

TEST(ModelStore, isReadyAtOnceWithAFileInPlaceWhateverItHolds)
{
    StoreUnderTest test;
    test.root.write("models/test.onnx", "something else");
    test.start();
    EXPECT_EQ(test.store->state().which, Case::ready);
    fetch(test);
    EXPECT_TRUE(test.server.requests().empty());
    EXPECT_EQ(readFile(test.target()), "something else");
}

TEST(ModelStore, saysWhatTheFileSystemRefuses)
{
    struct Obstacle {
        const char* name;
        std::function<void(const TemporaryFolder&)> put;
        std::string action;
        std::errc reason;
    };
    const Obstacle cases[] = {
        {"a file where the folder belongs", [](const auto& root) { root.write("models", ""); },
            "make the folder “{}/models”", std::errc::not_a_directory},
        {"a folder where the model belongs",
            [](const auto& root) { std::filesystem::create_directories(root / "models/test.onnx"); },
            "write “{}/models/test.onnx”", std::errc::is_a_directory},
    };
    for (const auto& [name, put, action, reason] : cases) {
        SCOPED_TRACE(name);
        StoreUnderTest test;
        put(test.root);
        const auto before = test.files();
        fetch(test);
        auto message = "failed: Could not " + action + ": " + std::make_error_code(reason).message();
        message.replace(message.find("{}"), 2, test.root.path().string());
        EXPECT_EQ(test.seen, (Seen{"downloading", message}));
        EXPECT_EQ(test.files(), before);
    }
}

TEST(ModelStore, failsWhenTheDiskIsFull)
{
    StoreUnderTest test;
    {
        const SizeLimit limit(100'000);
        fetch(test);
    }
    EXPECT_EQ(test.seen.back(),
        "failed: Could not write “" + test.part().string()
            + "”: " + std::make_error_code(std::errc::file_too_large).message());
    EXPECT_EQ(test.files(), Seen{"models"});
}

TEST(ModelStore, clearsAwayAtTheNextStartWhatAKilledDownloadLeft)
{
    GTEST_FLAG_SET(
        death_test_style, "threadsafe"); // which runs this test once more, up to the kill, in a child
    const char* const variable = "KORVO_TEST_ROOT";
    StoreUnderTest test(sendHalf);
    const char* const parentsRoot = std::getenv(variable);
    const std::filesystem::path root = parentsRoot ? parentsRoot : test.root.path();
    const ScopedVariable forTheChild(variable, root.string());
    EXPECT_EXIT(
        {
            ModelStore store(test.main, test.downloader,
                {"test model", {modelFile("models/test.onnx", "/test.onnx")}}, root, test.server.url());
            store.fetch();
            test.main.runUntil([&] { return store.state().progress.received > 0; });
            std::raise(SIGKILL);
        },
        testing::KilledBySignal(SIGKILL), "");
    EXPECT_EQ(test.files(), (Seen{"models", "models/test.onnx.part"}));
    test.start();
    EXPECT_EQ(test.store->state().which, Case::missing);
    EXPECT_EQ(test.files(), Seen{"models"});
}

TEST(ModelStore, leavesTheDownloadOfAnotherProcessAlone)
{
    StoreUnderTest test;
    {
        std::filesystem::create_directories(test.target().parent_path());
        const auto others = PartFile::begin(test.target());
        test.start();
        EXPECT_TRUE(std::filesystem::exists(test.part()));
        fetch(test);
        EXPECT_EQ(
            test.seen.back(), "failed: The test model is being downloaded by another window or command.");
        EXPECT_TRUE(std::filesystem::exists(test.part()));
    }
    fetch(test);
    EXPECT_EQ(test.seen.back(), "ready");
}

TEST(ModelStore, removesWhatIsInstalled)
{
    StoreUnderTest test;
    fetch(test);
    test.store->remove();
    EXPECT_EQ(test.seen, (Seen{"downloading", "ready", "missing"}));
    EXPECT_EQ(test.files(), Seen{});
    fetch(test);
    test.root.write("models/notes.txt", "mine");
    test.store->remove();
    EXPECT_EQ(test.files(), (Seen{"models", "models/notes.txt"}));
    test.store->remove();
    EXPECT_EQ(test.store->state().which, Case::missing);
}

TEST(ModelStore, removingEndsADownloadAndTellsWhatCannotBeRemoved)
{
    StoreUnderTest test(sendHalf);
    test.root.write("models/test.onnx/in the way", "");
    test.store->fetch();
    test.waitForBytes();
    EXPECT_THROW(test.store->remove(), std::system_error);
    EXPECT_EQ(test.store->state().which, Case::missing);
    EXPECT_FALSE(std::filesystem::exists(test.part()));
}

TEST(ModelStore, installsSeveralFilesTogetherOrNotAtAll)
{
    std::atomic<bool> good = false;
    StoreUnderTest test([&](const std::string& target, HttpConnection& connection) {
        connection.answer("200 OK", target == "/b" && !good ? "wrong" : modelBytes());
    });
    const ModelSet two{"test models", {modelFile("m/a", "/a"), modelFile("m/b", "/b")}};
    test.start(two);
    std::vector<double> fractions;
    test.reaction = [&] { fractions.push_back(test.store->state().progress.fraction.value_or(0)); };
    fetch(test);
    EXPECT_EQ(test.store->state().which, Case::failed);
    EXPECT_EQ(test.files(), Seen{"m"});
    good = true;
    fractions.clear();
    fetch(test);
    EXPECT_EQ(test.files(), (Seen{"m", "m/a", "m/b"}));
    ASSERT_GE(fractions.size(), 2U);
    fractions.pop_back(); // of the state `ready`
    EXPECT_TRUE(std::ranges::is_sorted(fractions));
    EXPECT_EQ(fractions.back(), 1.0);

    std::filesystem::remove(test.root / "m/b");
    test.start(two);
    EXPECT_EQ(test.store->state().which, Case::missing);
    fetch(test);
    EXPECT_EQ(test.store->state().which, Case::ready);
    EXPECT_EQ(test.server.requests().back(), "/b");
    EXPECT_EQ(test.server.requests().size(), 5U) << "what is installed is not fetched again";
}

} // namespace korvo
