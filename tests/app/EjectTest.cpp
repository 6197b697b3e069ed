#include "tests/platform/DiskService.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace korvo {

/// The program, a card that is really mounted, and a service for disks that knows it.
TEST(Eject, followsTheImportOfACard)
{
    const TemporaryFolder folder;
    const auto card = folder / "card";
    std::filesystem::create_directories(card);
    if (mount("tmpfs", card.c_str(), "tmpfs", 0, "size=1m") != 0)
        GTEST_SKIP() << "mounting is not allowed here: " << std::strerror(errno);
    folder.write("card/DCIM/IMG_1.JPG", "no photo, but a file");
    struct stat status { };
    stat(card.c_str(), &status);
    DiskService service;
    service.showCard(status.st_dev, card);
    const auto run = [&](const std::string& arguments) {
        const int code = std::system(("cd '" + folder.path().string()
            + "' && env KORVO_CONFIG=config "
              "DBUS_SYSTEM_BUS_ADDRESS="
            + service.address() + " " + KORVO_PROGRAM + " --library Library " + arguments + " >out 2>&1")
                                         .c_str());
        return std::to_string(WEXITSTATUS(code)) + " " + readFile(folder / "out");
    };
    run("create Library");
    EXPECT_EQ(run("--json volumes"),
        "0 {\"path\":\"" + card.string() + "\",\"name\":\"EOS_DIGITAL\",\"isCard\":true}\n");
    service.refuse("target is busy");
    EXPECT_EQ(run("import card --reference --copy-to x").substr(0, 1), "2");
    const auto busy = run("--json import card --copy-to Copies --eject");
    EXPECT_NE(busy.find("Couldn't eject EOS_DIGITAL: target is busy"), std::string::npos) << busy;
    EXPECT_TRUE(std::filesystem::exists(folder / "Copies/IMG_1.JPG")) << "what was imported stays";
    service.refuse("");
    EXPECT_EQ(run("import card --copy-to Copies --eject"),
        "0 0 photos imported, 1 already in the library, 0 failed\nEOS_DIGITAL ejected.\n");
    EXPECT_FALSE(std::filesystem::exists(card / "DCIM"));
    umount2(card.c_str(), MNT_DETACH); // in case it failed
}

} // namespace korvo
