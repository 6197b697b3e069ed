#include "tests/support/TemporaryFolder.h"

#include <QApplication>

#include <gtest/gtest.h>

/// Windows without a display, and preferences of the tests' own.
int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const korvo::TemporaryFolder folder;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("KORVO_CONFIG", (folder / "config").c_str());
    qputenv("KORVO_DATA", (folder / "data").c_str());
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
