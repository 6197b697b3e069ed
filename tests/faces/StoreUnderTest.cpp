#include "tests/faces/StoreUnderTest.h"

#include "platform/Sha256.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace korvo {

using Case = ModelStore::State::Case;

const std::string& modelBytes()
{
    static const std::string bytes = [] {
        std::string text;
        for (unsigned i = 0; i < 300'000; ++i)
            text += static_cast<char>(i * i >> 5);
        return text;
    }();
    return bytes;
}

ModelFile modelFile(const std::filesystem::path& place, const std::string& source)
{
    Sha256 digest;
    digest.add(Bytes(modelBytes()));
    return {place, source, digest.finish(), 1 << 20};
}

void sendModel(const std::string&, HttpConnection& connection)
{
    connection.answer("200 OK", modelBytes());
}

void sendHalf(const std::string&, HttpConnection& connection)
{
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(modelBytes().size()) + "\r\n\r\n");
    connection.send(modelBytes().substr(0, modelBytes().size() / 2))
        && connection.pause(std::chrono::seconds(30));
}

StoreUnderTest::StoreUnderTest(HttpServer::Handler handler) : server(std::move(handler))
{
    start();
}

void StoreUnderTest::start(ModelSet models)
{
    store = std::make_unique<ModelStore>(main, downloader, std::move(models), root.path(), server.url());
    connection_ = store->changed.connect([this] { observe(); });
    seen.clear();
}

void StoreUnderTest::observe()
{
    const auto& state = store->state();
    const char* const names[] = {"missing", "downloading", "failed: ", "ready"};
    const auto text = names[static_cast<std::size_t>(state.which)] + state.message;
    if (seen.empty() || seen.back() != text)
        seen.push_back(text);
    reaction();
}

void StoreUnderTest::finish()
{
    EXPECT_TRUE(main.runUntil([this] { return store->state().which != Case::downloading; }));
}

void StoreUnderTest::waitForBytes()
{
    EXPECT_TRUE(main.runUntil([this] { return store->state().progress.received > 0; }));
}

void StoreUnderTest::waitUntilGone(const std::filesystem::path& file)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::filesystem::exists(file) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_FALSE(std::filesystem::exists(file));
}

std::vector<std::string> StoreUnderTest::files() const
{
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root.path()))
        found.push_back(entry.path().lexically_relative(root.path()).string());
    std::ranges::sort(found);
    return found;
}

} // namespace korvo
