#include "faces/FaceModelStore.h"
#include "faces/SelectModelStore.h"
#include "tests/faces/StoreUnderTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

namespace korvo {

namespace {

using Case = ModelStore::State::Case;
using Seen = std::vector<std::string>;

std::string withOneByteChanged(std::size_t at)
{
    auto bytes = modelBytes();
    bytes[at] = static_cast<char>(bytes[at] ^ 1);
    return bytes;
}

} // namespace

TEST(ModelStore, failsWithTheReasonInstallsNothingAndMayTryAgain)
{
    const std::string mismatch = "The test model didn't match its fingerprint — nothing was installed.";
    const std::string tooEarly
        = "The download failed: the connection ended too early. Check the connection and try again.";
    const auto size = modelBytes().size();
    struct Misbehaviour {
        const char* name;
        std::function<void(HttpConnection&)> act;
        std::string message;
    };
    const Misbehaviour cases[] = {
        {"404", [](auto& c) { c.answer("404 Not Found", "no"); },
            "The download failed (HTTP 404). Check the connection and try again."},
        {"500", [](auto& c) { c.answer("500 Internal Server Error"); },
            "The download failed (HTTP 500). Check the connection and try again."},
        {"closes early", [](auto&) {}, tooEarly},
        {"too little", [&](auto& c) { c.send("HTTP/1.1 200 OK\r\nContent-Length: 300000\r\n\r\nabc"); },
            tooEarly},
        {"too little, length unknown",
            [&](auto& c) { c.send("HTTP/1.1 200 OK\r\n\r\n" + modelBytes().substr(0, size - 1)); }, mismatch},
        {"endless",
            [](auto& c) {
                c.send("HTTP/1.1 200 OK\r\n\r\n");
                while (c.send(modelBytes())) { }
            },
            "The download was stopped: the server sent more than the file can have."},
        {"empty", [](auto& c) { c.answer("200 OK"); }, mismatch},
        {"first byte", [](auto& c) { c.answer("200 OK", withOneByteChanged(0)); }, mismatch},
        {"middle byte", [&](auto& c) { c.answer("200 OK", withOneByteChanged(size / 2)); }, mismatch},
        {"last byte", [&](auto& c) { c.answer("200 OK", withOneByteChanged(size - 1)); }, mismatch},
        {"one byte more", [](auto& c) { c.answer("200 OK", modelBytes() + "x"); }, mismatch},
    };
    for (const auto& [name, act, message] : cases) {
        SCOPED_TRACE(name);
        std::atomic<bool> good = false;
        StoreUnderTest test([&, &act = act](const std::string& target, HttpConnection& connection) {
            good ? sendModel(target, connection) : act(connection);
        });
        test.store->fetch();
        test.finish();
        EXPECT_EQ(test.files(), Seen{"models"});
        good = true;
        test.store->fetch();
        test.finish();
        EXPECT_EQ(test.seen, (Seen{"downloading", "failed: " + message, "downloading", "ready"}));
        EXPECT_EQ(readFile(test.target()), modelBytes());
        EXPECT_EQ(test.files(), (Seen{"models", "models/test.onnx"}));
    }
}

TEST(ModelStore, tellsTheFractionWhenTheServerTellsTheSize)
{
    for (const bool known : {true, false}) {
        StoreUnderTest test([&](const std::string&, HttpConnection& connection) {
            connection.send(
                known ? "HTTP/1.1 200 OK\r\nContent-Length: 300000\r\n\r\n" : "HTTP/1.1 200 OK\r\n\r\n");
            for (std::size_t at = 0; at < modelBytes().size(); at += 100'000) {
                connection.send(modelBytes().substr(at, 100'000));
                connection.pause(std::chrono::milliseconds(60)); // longer than the interval of the reports
            }
        });
        std::vector<ModelProgress> progress;
        test.reaction = [&] {
            if (test.store->state().progress.received > 0)
                progress.push_back(test.store->state().progress);
        };
        test.store->fetch();
        test.finish();
        ASSERT_FALSE(progress.empty());
        EXPECT_TRUE(std::ranges::is_sorted(progress, {}, &ModelProgress::received));
        for (const auto& [received, fraction] : progress)
            EXPECT_EQ(
                fraction, known ? std::optional(static_cast<double>(received) / 300'000.0) : std::nullopt);
        EXPECT_EQ(test.seen, (Seen{"downloading", "ready"}));
    }
}

TEST(ModelStore, runsOneDownloadAtATime)
{
    StoreUnderTest test([](const std::string&, HttpConnection& connection) {
        connection.send("HTTP/1.1 200 OK\r\n\r\n" + modelBytes().substr(0, 1000));
        connection.pause(std::chrono::milliseconds(100));
        connection.send(modelBytes().substr(1000));
    });
    test.store->fetch();
    test.waitForBytes();
    test.store->fetch();
    test.finish();
    test.store->fetch();
    EXPECT_EQ(test.server.requests(), Seen{"/test.onnx"});
    EXPECT_EQ(test.seen, (Seen{"downloading", "ready"}));
}

TEST(ModelStore, cancellingIsNoFailureAndLeavesNothing)
{
    std::atomic<bool> whole = false;
    StoreUnderTest test([&](const std::string& target, HttpConnection& connection) {
        whole ? sendModel(target, connection) : sendHalf(target, connection);
    });
    test.store->cancel();
    test.store->fetch();
    test.waitForBytes();
    EXPECT_TRUE(std::filesystem::exists(test.part()));
    test.store->cancel();
    EXPECT_EQ(test.store->state().which, Case::missing);
    test.waitUntilGone(test.part());
    whole = true;
    test.store->fetch();
    test.finish();
    EXPECT_EQ(test.seen, (Seen{"downloading", "missing", "downloading", "ready"}));
}

TEST(ModelStore, endsItsDownloadWhenItGoes)
{
    StoreUnderTest test(sendHalf);
    test.store->fetch();
    test.waitForBytes();
    test.store.reset();
    test.main.runPending();
    EXPECT_EQ(test.files(), Seen{"models"});
}

TEST(ModelStore, observersMayCancelAndFetchFromInsideAStateChange)
{
    std::atomic<int> asked = 0;
    StoreUnderTest test([&](const std::string& target, HttpConnection& connection) {
        switch (++asked) {
        case 1:
            return sendHalf(target, connection);
        case 2:
            return void(connection.answer("503 Service Unavailable"));
        default:
            return sendModel(target, connection);
        }
    });
    test.reaction = [&] {
        const auto& state = test.store->state();
        if (state.which == Case::downloading && state.progress.received > 0 && asked == 1)
            test.store->cancel();
        else if (state.which == Case::missing || state.which == Case::failed)
            test.store->fetch();
    };
    test.store->fetch();
    ASSERT_TRUE(test.main.runUntil([&] { return test.store->state().which == Case::ready; }));
    EXPECT_EQ(test.seen,
        (Seen{"downloading", "missing", "downloading",
            "failed: The download failed (HTTP 503). Check the connection and try again.", "downloading",
            "ready"}));
}

TEST(ModelStore, anObserverMayEndTheStore)
{
    StoreUnderTest test(
        [](const std::string&, HttpConnection& connection) { connection.answer("404 Not Found"); });
    test.reaction = [&] {
        if (test.store->state().which == Case::failed)
            test.store.reset();
    };
    test.store->fetch();
    EXPECT_TRUE(test.main.runUntil([&] { return !test.store; }));
}

TEST(FaceModelStore, asksAnyHostForThePinnedFile)
{
    StoreUnderTest test; // for its server, which sends something else than the face model
    FaceModelStore store(test.main, test.downloader, test.root.path(), test.server.url("/"));
    EXPECT_EQ(
        store.modelPath(), test.root / "Models/sface-2021dec-3d70824/face_recognition_sface_2021dec.onnx");
    store.fetch();
    ASSERT_TRUE(test.main.runUntil([&] { return store.state().which == Case::failed; }));
    EXPECT_EQ(test.server.requests(),
        Seen{"/opencv/face_recognition_sface/resolve/3d7082438a6e4551e840c9b2bb60b71e8da4b524/"
             "face_recognition_sface_2021dec.onnx"});
    EXPECT_EQ(store.state().message,
        "The face recognition model didn't match its fingerprint — nothing was installed.");
    EXPECT_FALSE(std::filesystem::exists(store.modelPath()));
}

TEST(SelectModelStore, hasNothingToDownloadYet)
{
    StoreUnderTest test;
    SelectModelStore store(test.main, test.downloader, test.root.path(), test.server.url());
    EXPECT_EQ(store.state().which, Case::missing);
    store.fetch();
    ASSERT_TRUE(test.main.runUntil([&] { return store.state().which == Case::failed; }));
    EXPECT_EQ(store.state().message, "There is no object selection model to download yet.");
}

} // namespace korvo
