#include "catalog/sql/Database.h"
#include "tests/app/ProgramWithPhotos.h"

namespace korvo {

namespace {

using GroupCommands = ProgramWithPhotos;

} // namespace

TEST_F(GroupCommands, groupsPhotosIntoVersionsStacksAndSmartAlbums)
{
    EXPECT_EQ(json("version create 1"), "{\"id\":4}\n");
    run("version create 4 --name Print");
    EXPECT_NE(json("version list 1").find(R"("versionOf":1,"versionName":"Print")"), std::string::npos);

    EXPECT_EQ(run("stack auto --dry-run").out, "Within 10 seconds: 1 stack from 3 photos\n");
    EXPECT_EQ(json("stack list"), "");
    EXPECT_EQ(json("stack create 1 2 --pick 2"), "{\"id\":1}\n");
    EXPECT_EQ(run("stack create 1 --pick 3").exitCode, 2);
    EXPECT_EQ(run("stack create 1 99").err, "korvo: no photo with the id 99\n");
    EXPECT_EQ(run("stack auto --source album:99").err, "korvo: no album with the id 99\n");
    EXPECT_EQ(run("stack move 1 1 -1").exitCode, 2);
    run("stack expand 1");
    EXPECT_EQ(json("stack list"), "{\"id\":1,\"pick\":2,\"collapsed\":false,\"members\":[2,1]}\n");

    const std::string videos = R"(--rules '{"rules":[{"field":"kind","op":"is","value":"video"}]}')";
    EXPECT_EQ(json("smart count " + videos), "{\"count\":1}\n");
    EXPECT_EQ(json("smart create Films " + videos), "{\"id\":1}\n");
    EXPECT_EQ(run("rate 5 --source smart:1").exitCode, 0);
    EXPECT_NE(run("list --source smart:1").out.find("c.mov  *****"), std::string::npos);
    EXPECT_EQ(run("smart update 1 --rules '[]'").exitCode, 1);
    EXPECT_EQ(run("smart update 1").exitCode, 2);
    EXPECT_EQ(run("smart delete 1").exitCode, 0);
    EXPECT_EQ(run("list --source smart:1").exitCode, 1);
}

TEST_F(GroupCommands, stackAutoTellsTheStacksItMadeAndLooksWithoutALock)
{
    const std::string planned = R"("pick":1,"members":[1,2,3]}]})"
                                "\n";
    {
        Database other(folder / "Library/catalog.sqlite");
        const Transaction writing(other);
        EXPECT_EQ(
            json("stack auto --dry-run"), R"({"interval":10,"stacks":1,"photos":3,"groups":[{)" + planned);
    }
    EXPECT_EQ(json("stack auto"), R"({"interval":10,"stacks":1,"photos":3,"groups":[{"id":1,)" + planned);
    EXPECT_EQ(json("stack list"), "{\"id\":1,\"pick\":1,\"collapsed\":true,\"members\":[1,2,3]}\n");
}

} // namespace korvo
