// bench_catalog [groups|steps] [PHOTOS...]: loading libraries of so many photos (100000 and 1000000 without
// arguments), smart albums and stacking ("groups": these alone), inserting and rating, each beside what a
// program would do that used SQLite directly, or beside the least that has to be done. "steps": how long
// actions on 100000 photos hold the main thread.

#include "bench/catalog/BareLoops.h"
#include "bench/catalog/GroupBench.h"
#include "bench/catalog/StepBench.h"
#include "bench/support/Compare.h"
#include "bench/support/MadeLibrary.h"
#include "catalog/PhotoRows.h"
#include "catalog/store/LibraryActions.h"
#include "catalog/store/LibraryStore.h"
#include "tests/support/ManualMainThread.h"

#include <fmt/format.h>

#include <cstdlib>
#include <string_view>

namespace korvo::bench {

namespace fs = std::filesystem;

namespace {

fs::path libraryOf(const fs::path& folder, std::size_t photos)
{
    const auto library = folder / std::to_string(photos);
    Catalog catalog(library, SystemClock());
    if (catalog.database().scalar("SELECT COUNT(*) FROM photos") == 0)
        catalog.database().exec(fmt::format(fillLibrary, photos, "/home/ana/Pictures",
            "printf('Archive/%d/%02d-%02d Some event name %d', 2005 + n / 500 % 20, 1 + n / 100 % 12, "
            "1 + n / 40 % 28, n / 500)",
            "printf('IMG_%06d.JPG', (n * 7919) % 1000003)"));
    return library;
}

std::vector<PhotoItem> loadRows(Catalog& catalog, const char* sql, std::size_t expected)
{
    std::vector<PhotoItem> items;
    items.reserve(expected);
    auto statement = catalog.database().prepare(sql);
    PhotoRows rows(statement);
    while (statement.step())
        items.push_back(rows.item());
    return items;
}

void compareLoading(const fs::path& library, std::size_t photos)
{
    constexpr auto rows = "SELECT p.* FROM photos p";
    constexpr auto ordered
        = "SELECT p.* FROM photos p WHERE p.version_of IS NULL ORDER BY p.filename COLLATE NOCASE";
    Catalog catalog(library, SystemClock());
    const auto file = library / "catalog.sqlite";
    std::vector<PhotoItem> items;
    std::vector<BareRow> bare;
    const auto clear = [&] {
        items = {};
        bare = {};
    };
    compare(fmt::format("Loading {} rows", photos),
        {{"items", [&] { items = loadRows(catalog, rows, photos); }, clear},
            {"bare loop into structs", [&] { bare = loadBare(file, rows, photos); }, clear}});
    compare(fmt::format("Loading {} photos by name, as the library lists them", photos),
        {{"items", [&] { items = catalog.photos(std::nullopt); }, clear},
            {"bare loop into structs", [&] { bare = loadBare(file, ordered, photos); }, clear}});
}

/// Before all else, while this process has no memory of its own to use again. What a library of a single
/// photo takes is the catalog's own.
void compareMemory(const fs::path& library, const fs::path& single, std::size_t photos)
{
    std::vector<PhotoItem> items;
    std::vector<BareRow> bare;
    const auto taken = [&](const fs::path& from) {
        return memoryTakenBy([&] {
            Catalog own(from, SystemClock());
            items = own.photos(std::nullopt);
        });
    };
    const auto perPhoto = (taken(library) - taken(single)) / static_cast<double>(photos - 1);
    const auto perStruct = memoryTakenBy([&] {
        bare = loadBare(library / "catalog.sqlite", "SELECT p.* FROM photos p", photos);
    }) / static_cast<double>(photos);
    fmt::print(
        "Memory a photo of {}: {:.0f} bytes as an item, {:.0f} as a struct\n", photos, perPhoto, perStruct);
}

void compareInserting(const fs::path& folder, std::size_t count)
{
    std::vector<NewPhoto> photos;
    for (std::size_t n = 0; n < count; ++n)
        photos.push_back({.folderID = 1,
            .path = fmt::format("/home/ana/Pictures/Archive/{:04}/IMG_{:06}.JPG", n / 500, n),
            .addedAt = 1.7e9,
            .fileDate = 1.2e9 + static_cast<double>(n),
            .fileSize = 5'000'000,
            .metadata = {"Photo of a temple gate", fmt::format("Temple gate {}", n),
                "Shot for the autumn issue", "travel, night, people", "Ana Müller", "© 2022 Ana Müller"},
            .camera = {.camera = "FUJIFILM X-T5",
                .lens = "XF16-55mmF2.8 R LM WR",
                .iso = 100 << n % 7,
                .focalLength = 16.0 + static_cast<double>(n % 40),
                .aperture = 2.8,
                .shutter = 1.0 / 250,
                .captureDate = 1.2e9 + static_cast<double>(n)},
            .read = {.camera = true, .captureDate = true, .position = true}});
    const auto library = folder / "inserting";
    std::unique_ptr<Catalog> catalog;
    const auto empty = [&] {
        catalog.reset();
        fs::remove_all(library);
        catalog = std::make_unique<Catalog>(library, SystemClock());
        catalog->addFolder("/home/ana/Pictures", 1);
    };
    compare(fmt::format("Inserting {} photos", count),
        {{"Catalog::addPhotos", [&] { catalog->addPhotos(photos); }, empty},
            {"bare loop", [&] { insertBare(library / "catalog.sqlite", photos); }, empty}},
        count > 100'000 ? 3 : 5);
}

void compareRating(const fs::path& library)
{
    ManualMainThread main;
    LibraryStore store(main, std::make_unique<Catalog>(library, SystemClock()));
    std::vector<PhotoID> ids;
    for (std::size_t i = 0; i < 10'000; ++i)
        ids.push_back(store.list().items()[i * 10].id);
    int rating = 0;
    const auto next = [&] { rating = rating % 5 + 1; };
    compare("Rating 10000 of 100000 photos",
        {{"LibraryStore::setRating (undo, items, signal)", [&] { setRating(store, ids, rating); }, next},
            {"LibraryStore::undo", [&] { store.undo(); }},
            {"Catalog::setRating", [&] { store.catalog().setRating(ids, rating); }, next},
            {"bare loop", [&] { rateBare(library / "catalog.sqlite", ids, rating); }, next}});
}

} // namespace

} // namespace korvo::bench

int main(int argc, char** argv)
{
    using namespace korvo::bench;
    std::vector<std::size_t> sizes{100'000, 1'000'000};
    const std::string_view alone = argc > 1 && !std::isdigit(argv[1][0]) ? argv[1] : "";
    const int firstSize = alone.empty() ? 1 : 2;
    if (argc > firstSize)
        sizes.clear();
    for (int i = firstSize; i < argc; ++i)
        sizes.push_back(std::strtoull(argv[i], nullptr, 10));
    const auto folder = fs::temp_directory_path() / "korvo-bench";
    const std::string_view all;
    for (const auto size : sizes)
        if (alone == all)
            compareMemory(libraryOf(folder, size), libraryOf(folder, 1), size);
    for (const auto size : sizes)
        if (alone == all)
            compareLoading(libraryOf(folder, size), size);
    for (const auto size : sizes)
        if (alone == all || alone == "groups")
            compareGroups(libraryOf(folder, size));
    for (const auto size : sizes)
        if (alone == "steps")
            reportSteps(libraryOf(folder, size), 100'000);
    for (const auto size : sizes)
        if (alone == all)
            compareInserting(folder, size);
    if (alone == all)
        compareRating(libraryOf(folder, 100'000));
    fs::remove_all(folder);
}
