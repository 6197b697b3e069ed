#include "imports/ImportSource.h"
#include "imports/ImportOptions.h"
#include "imports/ImportOutcome.h"
#include "imports/ImportWindow.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

using Files = ImportOptions::Files;
using Project = ImportOptions::Project;

const ImportSource card{.kind = ImportSource::Kind::volume, .volume = {"/media/card", "EOS_DIGITAL", true}};
const ImportSource drive{.kind = ImportSource::Kind::volume, .volume = {"/media/drive", "Disk", false}};

ImportListing listing()
{
    return {.candidates = {{{.path = "/c/1.jpg"}, true, false}, {{.path = "/c/2.jpg"}, false, true},
                {{.path = "/c/3.jpg"}, false, false}}};
}

} // namespace

TEST(ImportSource, whatTheUserChoseBecomesAPlan)
{
    struct Case {
        ImportSource source;
        ImportOptions options;
        std::optional<std::filesystem::path> copyTo, card;
    };
    for (const auto& [source, options, copyTo, onCard] : {
             Case{card, {.files = Files::copy, .destination = "/p"}, "/p", "/media/card"},
             {card, {.files = Files::reference, .destination = "/p"}, "/p", "/media/card"}, // it goes back
             {drive, {.files = Files::reference, .destination = "/p"}, {}, {}},
             {drive, {.files = Files::copy, .destination = "/p"}, "/p", {}},
             {drive, {}, defaultDestination(), {}},
         }) {
        const auto plan = planOf(listing(), source, options);
        EXPECT_EQ(plan.copyTo, copyTo) << nameOf(source);
        EXPECT_EQ(plan.card, onCard) << nameOf(source);
        ASSERT_EQ(plan.files.size(), 1U);
        EXPECT_EQ(plan.files.front().file.path, "/c/2.jpg");
    }
    const ImportOptions unused{.newProject = "Trip", .chosenProject = 7};
    const auto with = [&](Project project) {
        auto options = unused;
        options.project = project;
        const auto plan = planOf(listing(), drive, options);
        return std::tuple(plan.byDay, plan.newProject, plan.project);
    };
    using Chosen = std::tuple<bool, std::string, std::optional<std::int64_t>>;
    EXPECT_EQ(with(Project::none), Chosen(false, "", std::nullopt));
    EXPECT_EQ(with(Project::made), Chosen(false, "Trip", std::nullopt));
    EXPECT_EQ(with(Project::byDay), Chosen(true, "", std::nullopt));
    EXPECT_EQ(with(Project::chosen), Chosen(false, "", 7));
}

TEST(ImportSource, theEndSaysWhatCameOfEveryFile)
{
    auto listed = listing();
    listed.failures.push_back({"/c/locked", "Permission denied"});
    EXPECT_EQ(pickedText(listed), "1 of 3 photos will be imported, 1 is already in the library");
    ImportResult result;
    result.photos = {1};
    result.known = 1;
    result.failures = {{"/c/9.jpg", "the file is empty"}};
    result.broken = "No disk.";
    EXPECT_EQ(countsText(countsOf(listed, result)), "1 photo imported, 2 already in the library, 2 failed");
    EXPECT_EQ(failuresOf(listed, result),
        (std::vector<std::string>{"/c/locked: Permission denied", "/c/9.jpg: the file is empty",
            "The import ended early; import again to go on. No disk."}));
}

} // namespace korvo
