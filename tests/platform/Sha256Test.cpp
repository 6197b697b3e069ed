#include "platform/Sha256.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <system_error>

namespace korvo {

TEST(Sha256, givesThePublishedDigests)
{
    // The examples of FIPS 180-4, and the empty message.
    const std::pair<std::string, std::string> cases[] = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {std::string(1'000'000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    for (const auto& [message, digest] : cases) {
        Sha256 whole;
        whole.add(Bytes(message));
        EXPECT_EQ(whole.finish(), digest);
        Sha256 inPieces;
        for (std::size_t at = 0; at < message.size(); at += 997)
            inPieces.add(Bytes(std::string_view(message).substr(at, 997)));
        EXPECT_EQ(inPieces.finish(), digest);
    }
}

TEST(Sha256, readsFilesThatEndAtOrBesideAChunk)
{
    const TemporaryFolder folder;
    const auto chunk = std::size_t{4} << 20;
    for (const auto size : {std::size_t{0}, chunk - 1, chunk, chunk + 1, 2 * chunk + 7}) {
        std::string contents(size, '\0');
        for (std::size_t i = 0; i < size; ++i)
            contents[i] = static_cast<char>(i * 131 >> 7);
        Sha256 digest;
        digest.add(Bytes(contents));
        EXPECT_EQ(sha256OfFile(folder.write("file", contents), {}), digest.finish()) << size;
    }
}

TEST(Sha256, stopsWhenAskedAndSaysWhatCannotBeRead)
{
    const TemporaryFolder folder;
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(sha256OfFile(folder.write("file", "abc"), stop.get_token()), std::nullopt);
    EXPECT_THROW(sha256OfFile(folder / "absent", {}), std::system_error);
    EXPECT_THROW(sha256OfFile(folder.path(), {}), std::system_error);
}

} // namespace korvo
