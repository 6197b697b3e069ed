// Importing a card beside copying it with cp and reading both sides once, as a careful person would: with
// checksums, one after the other or at once, or just to see that they can be read. cp leaves much of the copy
// in memory, from where it is read again; the import waits for the disk, reads from it, reads what the photos
// say, and keeps the catalog. KORVO_BENCH_FILES files (200) of KORVO_BENCH_MB (6) are made in $TMPDIR, where
// there must be room for two copies of them.
#include "bench/support/Compare.h"
#include "imports/FolderFiles.h"
#include "imports/ImportRun.h"
#include "platform/Sha256.h"
#include "tests/support/TestLibrary.h"

#include <fmt/format.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <thread>

using namespace korvo;
namespace fs = std::filesystem;

namespace {

int setting(const char* name, int usual)
{
    const char* const value = std::getenv(name);
    return value ? std::atoi(value) : usual;
}

void makeCard(const fs::path& folder, int files, int megabytes)
{
    fs::create_directories(folder);
    std::mt19937_64 random(1);
    std::vector<std::uint64_t> block(megabytes * (1 << 20) / sizeof(std::uint64_t));
    for (auto& word : block)
        word = random();
    for (int i = 0; i < files; ++i) {
        block[0] = static_cast<std::uint64_t>(i);
        std::ofstream(folder / fmt::format("IMG_{:05}.JPG", i), std::ios::binary)
            .write(reinterpret_cast<const char*>(block.data()),
                static_cast<std::streamsize>(block.size() * sizeof(std::uint64_t)));
    }
}

void shell(const std::string& command)
{
    if (std::system(command.c_str()) != 0)
        std::abort();
}

void readAll(const fs::path& folder)
{
    for (const auto& entry : fs::directory_iterator(folder))
        if (!sha256OfFile(entry.path(), {}))
            std::abort();
}

} // namespace

int main()
{
    const int files = setting("KORVO_BENCH_FILES", 200);
    const int megabytes = setting("KORVO_BENCH_MB", 6);
    const TemporaryFolder folder;
    const auto card = folder / "card", copy = folder / "copy";
    makeCard(card, files, megabytes);
    shell("sync");
    const auto clear = [&] {
        fs::remove_all(copy);
        shell("sync");
        readAll(card); // as warm as the memory lets it be
    };
    const auto import = [&] {
        TestLibrary library;
        FolderFiles source({card});
        auto plan = planFor(listImportable(source, *library.catalog, {}));
        plan.copyTo = copy;
        plan.namingPattern = "{seq} {name}";
        if (runImport(*library.catalog, source, plan, library.clock, {}, [](std::size_t) {}).photos.size()
            != static_cast<std::size_t>(files))
            std::abort();
    };
    const auto copyAndRead = [&](const std::string& flush) {
        shell("cp -r '" + card.string() + "' '" + copy.string() + "' && " + flush);
        readAll(card);
        readAll(copy);
    };
    const auto copyAndReadAtOnce = [&] {
        shell("cp -r '" + card.string() + "' '" + copy.string() + "'");
        std::jthread other([&] { readAll(card); });
        readAll(copy);
    };
    const auto copyAndCat = [&] {
        shell("cp -r '" + card.string() + "' '" + copy.string() + "' && cat '" + card.string() + "'/* '"
            + copy.string() + "'/* >/dev/null");
    };
    bench::compare(fmt::format("{} files of {} MB", files, megabytes),
        {{"import", import, clear}, {"cp -r, and cat of both sides", copyAndCat, clear},
            {"cp -r, and checksums of both sides at once", copyAndReadAtOnce, clear},
            {"cp -r, sync, and checksums of both sides", [&] { copyAndRead("sync"); }, clear},
            {"cp -r, and checksums of both sides", [&] { copyAndRead("true"); }, clear}},
        setting("KORVO_BENCH_ROUNDS", 3));
}
