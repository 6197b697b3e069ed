#include "tests/support/TemporaryFolder.h"

#include <QApplication>

#include <gtest/gtest.h>

/// The drivers of cameras leak when they are listed, and are unloaded before leaks are looked for, so that
/// these have no name by which they could be left out.
extern "C" const char* __asan_default_options()
{
    return "detect_leaks=0";
}

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
