#include "metadata/InfoTexts.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace korvo {

TEST(InfoTexts, linesHoldWhatIsKnown)
{
    PhotoItem item;
    EXPECT_EQ(cameraLine(item) + exposureLine(item) + positionText(item) + dateText(item), "");
    item.lens = "RF50mm";
    item.shutter = 0.004;
    item.iso = 400;
    item.latitude = -33.8568;
    item.longitude = 151.2153;
    EXPECT_EQ(cameraLine(item), "RF50mm");
    EXPECT_EQ(exposureLine(item), "1/250 s · ISO 400");
    item.camera = "Canon EOS R5";
    item.aperture = 2.8;
    item.focalLength = 50.0;
    item.shutter = 2.0;
    EXPECT_EQ(exposureLine(item), "2.0 s · ƒ/2.8 · 50 mm · ISO 400");
    item.aperture = item.focalLength = 0.0; // a lens that tells nothing
    EXPECT_EQ(cameraLine(item), "Canon EOS R5 · RF50mm");
    EXPECT_EQ(exposureLine(item), "2.0 s · ISO 400");
    EXPECT_EQ(positionText(item), "33.85680° S, 151.21530° E");
    EXPECT_EQ(unwrittenText(0, 3), "");
    EXPECT_EQ(unwrittenText(1, 1), "Not yet written into the file");
    EXPECT_EQ(unwrittenText(3, 12), "3 of 12 photos not yet written into their files");
}

TEST(InfoTexts, aFileThatIsGoneIsMissing)
{
    const TemporaryFolder folder;
    EXPECT_TRUE(fileFacts(folder / "gone.jpg").isMissing);
    std::filesystem::create_symlink("loop.jpg", folder / "loop.jpg");
    EXPECT_FALSE(fileFacts(folder / "loop.jpg").isMissing);
    EXPECT_NE(fileLine(fileFacts(folder / "loop.jpg")), "");
    folder.write("there.jpg", std::string(1234, 'x'));
    EXPECT_EQ(fileLine(fileFacts(folder / "there.jpg")), "1.2 kB");
}

} // namespace korvo
