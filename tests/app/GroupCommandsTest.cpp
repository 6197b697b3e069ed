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

TEST_F(GroupCommands, arrangesByHand)
{
    run("album create A");
    run("album add 1 1 2 3");
    const auto order = [&](const std::string& source) {
        std::string names;
        const auto list = run("list --source " + source).out;
        for (std::size_t at = 0; (at = list.find("photos/", at)) != list.npos; at += 7)
            names += list[at + 7];
        return names;
    };
    run("album order 1 3 1 --before 2");
    EXPECT_EQ(order("album:1"), "cab");
    run("album order 1 3");
    EXPECT_EQ(order("album:1"), "abc");
    run("album take 1 2");
    EXPECT_EQ(run("album order 1 2 1").err, "photo 2 is not in the album\n1 failed\n");
    EXPECT_EQ(run("album order 1 1 --before 2").exitCode, 2);
    EXPECT_EQ(order("album:1"), "ca");

    for (const auto* const make : {"project create P", "project create Q", "project create R --parent 1",
             "album create B --parent 2", "keyword create K", "keyword create L", "version create 1"})
        run(make);
    run("project move 2 --before 3");
    run("project create A");
    run("project move 4 --parent 1");
    run("album move 1 --before 2");
    run("keyword move 2 --parent 1");
    EXPECT_EQ(run("project move 1 --before 9").err, "korvo: no project with the id 9\n");
    EXPECT_EQ(run("album move 1 --before 2 --parent 1").exitCode, 2);
    const auto tree = run("tree").out;
    EXPECT_NE(tree.find("P (0 photos)\n  project:2  Q (0 photos)\n    album:1  A (2 photos)\n    album:2  B "
                        "(0 photos)\n  project:3  R (0 photos)\n  project:4  A"),
        std::string::npos)
        << tree;
    EXPECT_NE(tree.find("K\n  keyword 2  L"), std::string::npos) << tree;

    for (const auto* const name : {"S", "T", "U"})
        run(std::string("smart create ") + name + " --rules '{}'");
    run("smart move 3 --before 1");
    run("smart move 1");
    EXPECT_NE(run("tree").out.find("smart:3  U\nsmart:2  T\nsmart:1  S"), std::string::npos);
    EXPECT_EQ(run("smart move 1 --before 9").err, "korvo: no smart album with the id 9\n");

    EXPECT_EQ(run("version rename 4 Print").exitCode, 0);
    EXPECT_NE(json("version list 1").find(R"("versionName":"Print")"), std::string::npos);
    EXPECT_EQ(run("version rename 1 Master").exitCode, 1);
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
