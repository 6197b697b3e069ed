#include "base/Json.h"
#include "base/Text.h"
#include "catalog/GridOrder.h"
#include "catalog/LibrarySource.h"
#include "tests/app/ProgramWithPhotos.h"

#include <regex>

namespace korvo {

namespace {

using CommandLine = ProgramWithPhotos;

/// The manual's entries by the word they begin with.
std::map<std::string, std::string> manualEntries(const std::string& manual)
{
    std::map<std::string, std::string> entries;
    static const std::regex tag(R"(\n\.TP\n\.[BIR]+ "?([a-z-]+))");
    for (std::sregex_iterator at(manual.begin(), manual.end(), tag), end; at != end;) {
        const auto name = (*at)[1].str();
        const auto begin = static_cast<std::size_t>(at->position());
        entries[name] += manual.substr(begin, ++at == end ? manual.npos : at->position() - begin);
    }
    return entries;
}

} // namespace

TEST_F(CommandLine, exitCodesAndMessagesSayHowItWent)
{
    struct Case {
        std::string arguments;
        int exitCode;
        std::string out, err; // beginnings
    };
    for (const auto& [arguments, exitCode, out, err] : {
             Case{"--version", 0, "korvo ", ""},
             {"--help", 0, "Korvo keeps", ""},
             {"rate --help", 0, "give stars", ""},
             {"", 2, "", "korvo: "},
             {"develop", 2, "", "korvo: no command \"develop\""},
             {"rate", 2, "", "korvo: "},
             {"list --nonsense", 2, "", "korvo: "},
             {"rate 6 1", 2, "", "korvo: a rating is"},
             {"rate 3", 2, "", "korvo: ID or --source"},
             {"set 1", 2, "", "korvo: name at least one field"},
             {"edits 1 --set ''", 1, "", "korvo: "},
             {"list --source album:9", 1, "", "korvo: no album with the id 9"},
             {"rate -1 1", 0, "", ""},
             {"rate -- -1 1", 0, "", ""},
             {"rate 3 99", 1, "", "korvo: no photo with the id 99"},
             {"rate 3 1 99", 3, "", "no photo with the id 99\n1 failed"},
             {"rate 3 one", 2, "", "korvo: \"one\" is no photo id"},
             {"label pink 1", 2, "", "korvo: \"pink\" is no label"},
             {"list --filter unrated", 2, "",
                 "korvo: \"unrated\" is no filter: use unratedOrBetter, starred, "},
             {"export --to /nowhere --format gif 1", 2, "", "korvo: \"gif\" is no format: use jpg, "},
             {"list --sort size", 2, "", "korvo: \"size\" is no sort key: use name, "},
             {"show 99", 1, "", "korvo: no photo"},
             {"list --source moon", 2, "", "korvo: no source"},
             {"edits 1 --set '{\"exposure\":1}'", 1, "", "korvo: "},
             {"album add 5 1", 1, "", "korvo: no album with the id 5"},
             {"project create x --parent 5", 1, "", "korvo: no project with the id 5"},
             {"project delete 5", 1, "", "korvo: no project with the id 5"},
             {"--library /nowhere list", 1, "", "korvo: no library in /nowhere"},
             {"add /nowhere", 1, "", "korvo: /nowhere: No such file"},
         }) {
        SCOPED_TRACE(arguments);
        const auto outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err;
        EXPECT_TRUE(outcome.out.starts_with(out)) << outcome.out;
        EXPECT_TRUE(outcome.err.starts_with(err)) << outcome.err;
        EXPECT_EQ(outcome.err.empty(), err.empty());
    }
    std::filesystem::remove_all(folder / "config");
    EXPECT_TRUE(run("list").err.starts_with("korvo: no library"));
}

TEST_F(CommandLine, theManualTellsWhatTheHelpTells)
{
    auto manual = readFile(KORVO_MANUAL);
    std::erase(manual, '\\'); // as in "\-"
    const auto entries = manualEntries(manual);
    const std::string general = "--help --help-all --source";
    static const std::regex nameLine("\n([a-z-]+)\n"), nameOrOption("\n([a-z-]+)\n|(--[a-z-]+)");
    const auto help = run("--help-all").out;
    for (std::sregex_iterator at(help.begin(), help.end(), nameLine), end; at != end;) {
        const auto name = (*at)[1].str();
        const auto begin = static_cast<std::size_t>(at->position() + at->length());
        auto text = help.substr(begin, ++at == end ? help.npos : at->position() - begin);
        if (text.find("Subcommands:") != text.npos)
            text = run(name + " --help-all").out;
        const auto entry = entries.find(name);
        ASSERT_NE(entry, entries.end()) << name;
        for (std::sregex_iterator word(text.begin(), text.end(), nameOrOption); word != end; ++word) {
            const auto matched = word->str();
            const auto told = trimmed(matched);
            EXPECT_TRUE(general.find(told) != general.npos || entry->second.find(told) != told.npos)
                << name << ": " << told;
        }
    }
    for (const auto& [filter, word] : casesOf<GridFilter>)
        EXPECT_NE(entries.at("list").find(word), manual.npos) << word;
    const auto sources = manual.substr(manual.find(".SH SOURCES"), 300), names = sourceNames();
    for (const auto name : split(names, ','))
        EXPECT_NE(sources.find(trimmed(name.substr(0, name.find("ID")))), sources.npos) << name;
}

TEST_F(CommandLine, marksAndDescribesByIdsSourcesAndStandardInput)
{
    run("rate 4 1 2");
    run("flag --source videos");
    EXPECT_EQ(run("label purple -", "1\n\n 3 \n").exitCode, 0);
    run("set --title 'A \"title\"' --keywords ' b,a ,,b c' 1");
    run("set --caption C 1");
    run(R"(edits 1 --set '{"exposure":0.5,"contrast":1,"saturation":1,"vibrance":0,"temperature":0,"tint":0,"sharpness":0}')");
    const auto shown = json("show 1");
    const JsonDocument document(shown);
    const auto photo = document.root();
    EXPECT_EQ(photo.member("rating").integer(), 4);
    EXPECT_EQ(photo.member("label").integer(), 6);
    EXPECT_EQ(photo.member("path").text(), (folder / "photos/a.jpg").native());
    EXPECT_EQ(photo.member("metadata").member("title").text(), "A \"title\"");
    EXPECT_EQ(photo.member("metadata").member("keywords").text(), "b, a, b c");
    EXPECT_EQ(photo.member("metadata").member("caption").text(), "C");
    EXPECT_FALSE(photo.member("metadata").member("creator")) << "what is not set is left out";
    EXPECT_EQ(photo.member("edits").member("exposure").number(), 0.5);
    EXPECT_TRUE(photo.member("dirty").boolean());
    EXPECT_FALSE(photo.member("versionOf"));
    EXPECT_EQ(JsonDocument(json("list --source flagged")).root().member("id").integer(), 3);
    run("edits 1 --clear");
    EXPECT_EQ(json("show 1").find("\"edits\""), std::string::npos);
    run("flag --off 3");
    EXPECT_EQ(json("list --source flagged"), "");
}

TEST_F(CommandLine, listsStreamOneObjectALineSortedAndFiltered)
{
    run("rate -1 1");
    run("rate 5 3");
    const auto ids = [&](const std::string& arguments) {
        std::string text;
        const auto lines = json("list " + arguments);
        for (std::size_t at = 0; at < lines.size(); at = lines.find('\n', at) + 1)
            text += lines.substr(at + 6, lines.find(',', at) - at - 6);
        return text;
    };
    EXPECT_EQ(ids(""), "123") << "rejected ones too";
    EXPECT_EQ(ids("--sort rating"), "321");
    EXPECT_EQ(ids("--filter unratedOrBetter"), "23");
    EXPECT_EQ(ids("--filter rejected --sort name"), "1");
    EXPECT_EQ(ids("--source videos"), "3");
}

TEST_F(CommandLine, buildsTheTree)
{
    EXPECT_EQ(json("project create Outer --kind folder"), "{\"id\":1}\n");
    EXPECT_EQ(run("project create Inner --parent 1").out, "2\n");
    run("album create Album --parent 2");
    run("album add 1 3 1");
    run("album take 1 3");
    run("project assign 2 1 2");
    run("project assign none 2");
    run("keyword create animals");
    run("keyword create apes --parent 1");
    run("project rename 2 Renamed");
    EXPECT_EQ(json("tree"),
        "{\"folders\":[{\"id\":1,\"path\":\"" + (folder / "photos").string()
            + "\"}],\"projects\":[{\"id\":1,\"name\":\"Outer\",\"kind\":\"folder\",\"count\":0,\"children\":["
              "{\"id\":2,"
              "\"name\":\"Renamed\",\"kind\":\"project\",\"parentID\":1,\"count\":1,\"children\":[]}]}],"
              "\"albums\":[{\"id\":"
              "1,\"name\":\"Album\",\"parentID\":2,\"count\":1}],\"smartAlbums\":[],\"keywords\":[{\"id\":1,"
              "\"name\":"
              "\"animals\"},{\"id\":2,\"name\":\"apes\",\"parentID\":1}],\"people\":[],\"totals\":{"
              "\"photos\":3,"
              "\"withoutAltText\":3,\"dirty\":0,\"outsideProjects\":2,\"masters\":3,"
              "\"mastersWithoutAltText\":3}}\n");
    EXPECT_EQ(run("project gather All").out, "3\n");
    run("album move 1");
    run("album delete 1");
    run("keyword delete 1");
    run("project delete 3");
    run("remove 1 2");
    EXPECT_EQ(run("tree").out.find("project"), std::string::npos);
    EXPECT_EQ(json("list").find("\"id\":1,"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(folder / "photos/a.jpg")) << "files stay";
}

TEST_F(CommandLine, renamesAndMovesWhatTheTreeHoldsAndTakesFoldersOut)
{
    run("project create Outer");
    run("project create Inner");
    run("album create Album");
    run("keyword create ape");
    run("set --keywords 'ape, tree' 1");
    for (const char* done :
        {"project move 2 --parent 1", "album rename 1 Renamed", "keyword rename 1 gorilla"})
        EXPECT_EQ(run(done).exitCode, 0) << done;
    const auto tree = json("tree");
    EXPECT_NE(tree.find(R"("name":"Inner","kind":"project","parentID":1)"), tree.npos) << tree;
    EXPECT_NE(tree.find(R"("name":"Renamed")"), tree.npos) << tree;
    EXPECT_NE(json("show 1").find(R"("keywords":"gorilla, tree")"), std::string::npos);
    EXPECT_EQ(run("project move 1 --parent 2").exitCode, 2) << "into itself";
    run("project move 2");
    EXPECT_EQ(json("tree").find("\"parentID\""), std::string::npos);
    for (const char* missing :
        {"project move 9", "album rename 9 x", "keyword rename 9 x", "folder remove 9"})
        EXPECT_EQ(run(missing).exitCode, 1) << missing;

    EXPECT_EQ(run("folder remove 1").exitCode, 0);
    EXPECT_EQ(json("list"), "");
    EXPECT_TRUE(std::filesystem::exists(folder / "photos/a.jpg")) << "files stay";
}

TEST_F(CommandLine, checkFindsWhatIsWrong)
{
    EXPECT_EQ(run("check").exitCode, 0);
    std::filesystem::remove(folder / "photos/a.jpg");
    const auto found = run("--json check");
    EXPECT_EQ(found.exitCode, 3);
    EXPECT_NE(found.out.find("a.jpg: missing"), std::string::npos) << found.out;
    const auto backup = std::filesystem::directory_iterator(folder / "Library/Backups")->path();
    auto copy = readFile(folder / "Library/catalog.sqlite");
    copy.replace(copy.size() - 4096, 4096, 4096, 'x'); // the last page, which opening it does not look at
    folder.write("Library/Backups/" + backup.filename().string(), copy);
    const auto damaged = run("check").out;
    EXPECT_NE(damaged.find("backup " + backup.string()), std::string::npos) << damaged;
    EXPECT_EQ(json("add " + (folder / "photos").string()),
        "{\"added\":0,\"known\":2,\"ignored\":0,\"failed\":0}\n");
}

TEST_F(CommandLine, namesGiveTheTerminalNoOrders)
{
    folder.write("photos/d\x1B[2J\n.jpg", "x");
    run("--quiet add " + (folder / "photos").string());
    EXPECT_NE(run("list").out.find("d\\u001B[2J\\n.jpg"), std::string::npos);
    EXPECT_NE(json("list").find("d\\u001b[2J\\n.jpg"), std::string::npos);
    std::filesystem::remove(folder / "photos/d\x1B[2J\n.jpg");
    EXPECT_EQ(run("check").out.find('\x1B'), std::string::npos);
}

TEST_F(CommandLine, anInterruptEndsTheWaitForInputWithNothingDone)
{
    const auto endless = (folder / "endless").string();
    const auto config = (folder / "config").string();
    const int status = std::system(("mkfifo " + endless + " && KORVO_CONFIG=" + config
        + " timeout --preserve-status --kill-after=20 --signal=INT 1 " + KORVO_PROGRAM + " rate 5 - 1 <>"
        + endless)
                                       .c_str());
    EXPECT_EQ(WEXITSTATUS(status), 130);
    EXPECT_NE(json("show 1").find("\"rating\":0"), std::string::npos);
}

TEST_F(CommandLine, aPlaceForPreferencesThatCannotBeToldIsAnError)
{
    // A relative place has no meaning in a folder that is gone.
    const int status = std::system(("cd " + folder.write("gone/x", "").parent_path().string()
        + " && rm x && rmdir ../gone && KORVO_CONFIG=config " + std::string(KORVO_PROGRAM) + " library 2>"
        + (folder / "err").string())
                                       .c_str());
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_TRUE(readFile(folder / "err").starts_with("korvo: ")) << readFile(folder / "err");
}

TEST_F(CommandLine, namesPhotosByPatternsAndKeepsPresets)
{
    run("set --title 'A/B' 2");
    EXPECT_EQ(run("naming expand '{seq} {title}' 2 1").out, "001 A-B\n002 a\n");
    EXPECT_EQ(json("naming expand '{name}' 3"), "{\"id\":3,\"name\":\"c\"}\n");
    EXPECT_TRUE(
        json("naming list").find(R"("name":"Date + Name","pattern":"{date} {name}"})") != std::string::npos);
    const auto file = folder.write("presets.json", R"([{"name":"Mine","pattern":"m"}])");
    EXPECT_EQ(run("naming set " + file.string()).exitCode, 0);
    EXPECT_EQ(run("naming list").out, "Mine            m\n");
    const auto listed = folder.write("listed.json", json("naming list"));
    run("naming restore");
    EXPECT_EQ(run("naming set " + listed.string()).exitCode, 0);
    EXPECT_EQ(run("naming list").out, "Mine            m\n");
    EXPECT_EQ(run("naming set /nowhere").exitCode, 1);
    EXPECT_NE(
        run("naming set " + folder.write("bad.json", "no").string()).err.find("bad.json"), std::string::npos);
    run("naming restore");
    EXPECT_NE(run("naming list").out.find("Original Name   {name}\n"), std::string::npos);
}

TEST_F(CommandLine, rendersPhotosAndFilesIntoFiles)
{
    const std::string source = KORVO_TEST_DATA "/images/turned6.jpg", out = (folder / "out.png").string();
    EXPECT_EQ(json("render " + source + " --out " + out + " --size 12"),
        "{\"path\":\"" + out + "\",\"width\":12,\"height\":8}\n");
    EXPECT_EQ(run("render 1 --out " + out).exitCode, 1) << "the photo is no picture";
    EXPECT_EQ(run("render 99 --out " + out).err, "korvo: no photo with the id 99\n");
    EXPECT_EQ(run("render " + source + " --out " + source).exitCode, 1);
    EXPECT_EQ(run("render " + source + " --out x.gif").exitCode, 2);
    EXPECT_EQ(run("render " + source + " --out " + out + " --quality 101").exitCode, 2);
    const auto original = folder.write("photos/a.jpg", readFile(source));
    EXPECT_EQ(run("render 1 --out " + out + R"( --edits '{"exposure":1}')").exitCode, 1) << "no whole record";
    const auto fresh = (folder / "new.png").string();
    EXPECT_EQ(run("--library /nowhere render " + source + " --out " + fresh).exitCode, 0) << "it needs none";
    EXPECT_EQ(run("render 1 --out " + out).out, out + "  48 × 32\n");
    EXPECT_EQ(readFile(original), readFile(source));
}

TEST_F(CommandLine, rendersOverNoOriginalByWhateverName)
{
    const std::string source = KORVO_TEST_DATA "/images/turned6.jpg";
    folder.write("photos/a.jpg", readFile(source));
    const auto real = folder.write("elsewhere/real.jpg", "real");
    std::filesystem::create_symlink(real, folder / "photos/link.jpg");
    std::filesystem::create_directory_symlink(folder / "photos", folder / "led");
    run("add " + (folder / "photos/link.jpg").string());
    // as a file system shows it that does not mind case
    std::filesystem::create_hard_link(folder / "photos/b.jpg", folder / "photos/B.JPG");
    for (const std::string& photo : {std::string("1"), source})
        for (const auto* const name :
            {"photos/b.jpg", "photos/B.JPG", "led/b.jpg", "photos/link.jpg", "elsewhere/real.jpg"}) {
            const auto outcome = run("render " + photo + " --out " + (folder / name).string());
            EXPECT_EQ(outcome.exitCode, 1) << photo << " to " << name;
            EXPECT_NE(outcome.err.find("is an original photo"), std::string::npos) << outcome.err;
        }
    EXPECT_EQ(readFile(folder / "photos/b.jpg") + readFile(real), "xreal");
    std::filesystem::rename(folder / "Library", folder / "unplugged");
    for (const std::string& library : {std::string(), "--library " + (folder / "Library").string() + " "}) {
        const auto outcome
            = run(library + "render " + source + " --out " + (folder / "photos/b.jpg").string());
        EXPECT_NE(outcome.err.find("connect its disk"), std::string::npos) << outcome.err;
    }
    EXPECT_EQ(readFile(folder / "photos/b.jpg"), "x");
}

TEST_F(CommandLine, exportsPhotosByAPatternIntoAFolder)
{
    folder.write("photos/a.jpg", readFile(KORVO_TEST_DATA "/images/turned6.jpg"));
    const auto to = (folder / "Web").string();
    const auto done = run("--json export --to " + to + " --format png --size 12 --pattern '{seq} x' 2 1 99");
    EXPECT_EQ(done.out, "{\"exported\":1,\"failed\":1}\n");
    EXPECT_EQ(done.exitCode, 3);
    EXPECT_NE(done.err.find("b.jpg"), std::string::npos) << "it is no picture: " << done.err;
    EXPECT_EQ(json("render '" + to + "/002 x.png' --out " + (folder / "again.png").string()),
        "{\"path\":\"" + (folder / "again.png").string() + "\",\"width\":12,\"height\":8}\n");
    EXPECT_EQ(run("export --to " + to + " 1").out, "1 photo exported to " + to + "\n");
    EXPECT_TRUE(std::filesystem::exists(folder / "Web/a.jpg"));
    EXPECT_EQ(run("export 1").exitCode, 2) << "where to?";
}

TEST_F(CommandLine, analysesPhotosAndStoresWhatIsProposed)
{
    const std::string picture = KORVO_TEST_DATA "/images/plain.jpg";
    folder.write("photos/a.jpg", readFile(picture));
    const auto tones = json("histogram 1");
    EXPECT_TRUE(tones.starts_with(R"({"red":[)")) << tones;
    EXPECT_EQ(std::count(tones.begin(), tones.end(), ','), 4 * 64 - 1);
    EXPECT_EQ(json("histogram " + picture), tones);

    const auto proposed = json("enhance 1");
    EXPECT_TRUE(proposed.starts_with(R"({"exposure":)")) << proposed;
    EXPECT_EQ(json("enhance " + picture), proposed);
    EXPECT_EQ(run("edits 1").out, toJson(PhotoEdits()) + "\n") << "nothing is stored unasked";

    PhotoEdits edits{.exposure = 2, .tint = 3};
    run("edits 1 --set @" + folder.write("edits.json", toJson(edits)).string());
    EXPECT_NE(json("histogram 1"), tones);
    EXPECT_EQ(
        json("histogram 1 --edits @" + folder.write("none.json", toJson(PhotoEdits())).string()), tones);
    EXPECT_EQ(json("enhance 1 --apply"), proposed) << "the photo as taken counts, not its edits";
    const auto stored = fromJson<PhotoEdits>(run("edits 1").out);
    EXPECT_EQ(stored.tint, 3);
    EXPECT_NE(stored.exposure, 2);

    EXPECT_EQ(run("enhance " + picture + " --apply").exitCode, 2);
    const auto before = run("edits 2").out;
    EXPECT_EQ(run("enhance 2 --apply").exitCode, 1) << "the photo is no picture";
    EXPECT_EQ(run("edits 2").out, before);
    EXPECT_EQ(run("histogram 2").exitCode, 1);
}

} // namespace korvo
