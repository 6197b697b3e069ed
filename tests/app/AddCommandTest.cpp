#include "tests/app/KorvoProgram.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace korvo {

namespace {

class AddCommand : public ::testing::Test, protected KorvoProgram {
protected:
    AddCommand()
    {
        for (int i = 1000; i < 1600; ++i)
            folder.write("photos/" + std::to_string(i) + ".jpg", "x");
        run("create " + (folder / "Library").string());
    }

    std::string add() const { return "--quiet add " + (folder / "photos").string(); }
    std::ptrdiff_t photos() const
    {
        const auto listed = json("list");
        return std::count(listed.begin(), listed.end(), '\n');
    }
};

} // namespace

TEST_F(AddCommand, onADiskThatBecomesFullSaysHowMuchIsKeptAndGoesOnLater)
{
    const auto atOnce = runWithin(50'000, add());
    EXPECT_EQ(atOnce.exitCode, 1);
    EXPECT_TRUE(atOnce.err.starts_with("korvo: The library's disk ")) << atOnce.err;
    EXPECT_EQ(photos(), 0);

    const auto partWay = runWithin(130'000, "--json " + add());
    EXPECT_EQ(partWay.exitCode, 3);
    EXPECT_TRUE(partWay.err.starts_with("The library's disk ")) << partWay.err;
    EXPECT_EQ(partWay.out, "{\"added\":256,\"known\":0,\"ignored\":0,\"failed\":1}\n");
    EXPECT_EQ(photos(), 256) << "the batches that were stored by then";

    EXPECT_EQ(run(add()).exitCode, 0);
    EXPECT_EQ(photos(), 600);
}

} // namespace korvo
