#include "base/Uuid.h"

#include <gtest/gtest.h>

namespace korvo {

TEST(Uuid, isWrittenInUpperCaseAndReadInBoth)
{
    const auto uuid = Uuid::parse("f47ac10b-58CC-4372-a567-0e02b2c3d479");
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->text(), "F47AC10B-58CC-4372-A567-0E02B2C3D479");
    EXPECT_EQ(Uuid::parse(uuid->text()), uuid);
    for (const auto* text :
        {"", "F47AC10B-58CC-4372-A567-0E02B2C3D47", "F47AC10B-58CC-4372-A567-0E02B2C3D4790",
            "F47AC10B58CC-4372-A567-0E02B2C3D479-", "F47AC10B-58CC-4372-A567-0E02B2C3D47G",
            "F47AC10B-58CC-4372-A567-0E02B2C3D4+9", "F47AC10B-58CC-4372-A567-0E02B2C3D4 9"})
        EXPECT_EQ(Uuid::parse(text), std::nullopt) << text;
}

TEST(Uuid, freshOnesDifferAndSayTheirVersion)
{
    const auto uuid = Uuid::random();
    EXPECT_NE(uuid, Uuid::random());
    const auto text = uuid.text();
    EXPECT_EQ(text[14], '4');
    EXPECT_NE(std::string_view("89AB").find(text[19]), std::string_view::npos);
}

} // namespace korvo
