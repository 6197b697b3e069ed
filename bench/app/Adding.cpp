// bench_adding [FOLDER]: adds a folder of photos to a new library, with everything that is read of them;
// without one, 20000 small JPEGs that it makes. Shows the rate, how the last 2000 files compare with the
// first 2000, and the most memory taken, each time in a process of its own.

#include "app/AddFiles.h"
#include "bench/support/Compare.h"
#include "platform/ProcessLauncher.h"
#include "tests/support/TemporaryFolder.h"

#include <fmt/format.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>

namespace korvo::bench {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t ends = 2000; // files whose times are compared
constexpr int rounds = 5;

/// A photo with camera facts, a position and all descriptive fields, "000000" standing for its number.
std::string templatePhoto(const TemporaryFolder& folder)
{
    const auto file
        = folder.write("template.jpg", readFile(std::string(KORVO_TEST_DATA) + "/metadata/camera.jpg"));
    const std::string caption
        = "Temple gate 000000 in Kyoto, photographed on 15 January 2022. Shot for the autumn "
          "issue; cleared for print and web, no crop below the waterline.";
    const auto result = systemProcessLauncher()->run(
        {"/usr/bin/exiftool", "-overwrite_original", "-q", "-m", "-codedcharacterset=utf8", "-sep", ", ",
            "-XMP-dc:Title=Temple gate 000000", "-IPTC:ObjectName=Temple gate 000000",
            "-XMP-dc:Description=" + caption, "-IPTC:Caption-Abstract=" + caption,
            "-XMP-dc:Subject=travel, night, event 000000", "-IPTC:Keywords=travel, night, event 000000",
            "-XMP-dc:Creator=Ana Müller", "-IPTC:By-line=Ana Müller", "-IFD0:Artist=Ana Müller",
            "-XMP-dc:Rights=© 2022 Ana Müller", "-XMP-iptcCore:AltTextAccessibility=A quiet gate", file},
        {}, {});
    if (result.status != 0)
        throw std::runtime_error("exiftool: " + result.err);
    return readFile(file);
}

fs::path makeCorpus(const TemporaryFolder& folder, int count)
{
    const auto photo = templatePhoto(folder);
    for (int i = 0; i < count; ++i) {
        auto contents = photo;
        const auto number = fmt::format("{:06}", i);
        for (auto at = contents.find("000000"); at != contents.npos; at = contents.find("000000", at + 6))
            contents.replace(at, 6, number);
        folder.write(fmt::format("photos/{:03}/IMG_{}.JPG", i / 500, number), contents);
    }
    return folder / "photos";
}

struct Run {
    double seconds = 0, processor = 0, first = 0, last = 0; // the first and the last files
    std::size_t added = 0;
    double peakMemory = 0;
};

Run addAll(const fs::path& photos, const fs::path& library)
{
    Run run;
    std::vector<std::pair<std::size_t, double>> marks; // how many files after how many seconds
    const auto begun = std::chrono::steady_clock::now();
    const auto elapsed
        = [&] { return std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count(); };
    Catalog catalog(library, SystemClock());
    run.added = addFiles(
        catalog, std::span(&photos, 1), SystemClock(), ReadCameraData::now, {}, [&](std::size_t done) {
            marks.emplace_back(done, elapsed());
        }).added;
    run.seconds = elapsed();
    const auto perFile = [](const auto& from, const auto& to) {
        return (to.second - from.second) / static_cast<double>(to.first - from.first);
    };
    const auto reached = [&](std::size_t count) {
        return *std::ranges::find_if(marks, [&](const auto& mark) { return mark.first >= count; });
    };
    // From the first batch on: before it the catalog is made.
    run.first = perFile(marks.front(), reached(std::min(marks.front().first + ends, run.added)));
    run.last = perFile(reached(run.added - std::min(ends, run.added)), marks.back());
    run.peakMemory = peakMemory();
    run.processor = processorSeconds();
    return run;
}

Run inProcessOfItsOwn(const fs::path& photos)
{
    const TemporaryFolder folder;
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0)
        throw std::runtime_error("no pipe");
    if (const auto child = fork(); child == 0) {
        const auto run = addAll(photos, folder / "Library");
        [[maybe_unused]] const auto sent = write(pipeEnds[1], &run, sizeof run);
        _exit(0);
    }
    close(pipeEnds[1]);
    Run run;
    const auto got = read(pipeEnds[0], &run, sizeof run);
    close(pipeEnds[0]);
    wait(nullptr);
    if (got != sizeof run || run.added == 0)
        throw std::runtime_error("nothing was added");
    return run;
}

} // namespace

} // namespace korvo::bench

int main(int argc, char** argv)
{
    using namespace korvo;
    using namespace korvo::bench;
    const TemporaryFolder folder;
    const auto photos = argc > 1 ? fs::canonical(argv[1]) : makeCorpus(folder, 20'000);
    for (int round = 0; round < rounds; ++round) {
        const auto run = inProcessOfItsOwn(photos);
        fmt::print(
            "{} files in {:.2f} s ({:.2f} s of processor): {:.4f} ms a file; the last 2000 took {:.2f} "
            "times as long as the first; "
            "{:.0f} MB at most\n",
            run.added, run.seconds, run.processor, 1e3 * run.seconds / static_cast<double>(run.added),
            run.last / run.first, run.peakMemory / 1e6);
    }
}
