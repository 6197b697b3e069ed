// bench_catalog [groups] [PHOTOS...]: loading libraries of so many photos (100000 and 1000000 without
// arguments), smart albums and stacking ("groups": these alone), inserting and rating, each beside what a
// program would do that used SQLite directly, or beside the least that has to be done.

#include "bench/catalog/BareLoops.h"
#include "bench/catalog/GroupBench.h"
#include "bench/support/Compare.h"
#include "catalog/LibraryStore.h"
#include "catalog/PhotoRows.h"
#include "tests/support/ManualMainThread.h"

#include <fmt/format.h>

#include <cstdlib>
#include <string_view>

namespace korvo::bench {

namespace fs = std::filesystem;

namespace {

/// A library as one finds them: 60 % described, a fifth edited, half with a position.
constexpr auto fillLibrary = R"(
INSERT INTO folders (path, added_at) VALUES ('/home/ana/Pictures', 1);
WITH RECURSIVE i(n) AS (SELECT 0 UNION ALL SELECT n + 1 FROM i WHERE n + 1 < {0})
INSERT INTO photos (folder_id, path, filename, added_at, mtime, file_size, rating, flagged, alt_text, title, caption,
  keywords, creator, copyright, edits, label, camera, lens, iso, focal_length, aperture, shutter, exif_read,
  capture_date, capture_read, latitude, longitude, gps_read, place)
SELECT 1, printf('/home/ana/Pictures/Archive/%d/%02d-%02d Some event name %d/IMG_%06d.JPG', 2005 + n / 500 % 20,
    1 + n / 100 % 12, 1 + n / 40 % 28, n / 500, (n * 7919) % 1000003),
  printf('IMG_%06d.JPG', (n * 7919) % 1000003), 1.7e9 + n * 0.37, 1.2e9 + n * 400.5, 4000000 + n % 6000000, n % 6,
  n % 10 = 0,
  CASE WHEN n % 5 < 3 THEN printf('Photo of a %s temple gate in Kyoto', CASE n % 3 WHEN 0 THEN 'quiet' ELSE 'crowded' END) ELSE '' END,
  CASE WHEN n % 5 < 3 THEN printf('Temple gate %d in Kyoto', n) ELSE '' END,
  CASE WHEN n % 5 < 3 THEN printf('Temple gate %d in Kyoto, photographed in Kyoto on 15 January 2022. Shot for the autumn issue; cleared for print and web, no crop below the waterline.', n) ELSE '' END,
  CASE WHEN n % 5 < 3 THEN printf('travel, architecture, night, people, event %d', n / 40) ELSE '' END,
  'Ana Müller', '© 2022 Ana Müller',
  CASE WHEN n % 5 = 4 THEN printf('{{"exposure":%.2f,"contrast":1,"saturation":1.12,"vibrance":0.2,"temperature":4,"tint":-3,"sharpness":0.5,"straighten":0.7,"crop":{{"x":0.05,"y":0.02,"w":0.9,"h":0.93}},"highlights":0.4,"shadows":0.25,"disabledBricks":[]}}', n % 200 / 50.0) ELSE '' END,
  n % 8,
  CASE n % 4 WHEN 0 THEN 'Canon EOS R5' WHEN 1 THEN 'NIKON Z 6_2' WHEN 2 THEN 'SONY ILCE-7M4' ELSE 'FUJIFILM X-T5' END,
  CASE n % 4 WHEN 0 THEN 'RF24-70mm F2.8 L IS USM' WHEN 1 THEN 'NIKKOR Z 24-70mm f/4 S' WHEN 2 THEN 'FE 24-105mm F4 G OSS' ELSE 'XF18-55mmF2.8-4 R LM OIS' END,
  100 << n % 6, 24 + n % 100, 2.8, 1.0 / (1 + n % 2000), 1, 1.2e9 + n * 400.5, 1,
  CASE WHEN n % 2 THEN 35 + n * 1e-6 END, CASE WHEN n % 2 THEN 135 + n * 1e-6 END, 1,
  CASE WHEN n % 2 THEN 'Kyoto, Japan' ELSE '' END
FROM i;)";

fs::path libraryOf(const fs::path& folder, std::size_t photos)
{
    const auto library = folder / std::to_string(photos);
    Catalog catalog(library, SystemClock());
    if (catalog.database().scalar("SELECT COUNT(*) FROM photos") == 0)
        catalog.database().exec(fmt::format(fillLibrary, photos));
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

/// Before all else, while this process has no memory of its own to use again.
void compareMemory(const fs::path& library, std::size_t photos)
{
    std::vector<PhotoItem> items;
    std::vector<BareRow> bare;
    const auto perPhoto = memoryTakenBy([&] {
        Catalog own(library, SystemClock());
        items = own.photos(std::nullopt);
    }) / static_cast<double>(photos);
    const auto perStruct = memoryTakenBy([&] {
        bare = loadBare(library / "catalog.sqlite", "SELECT p.* FROM photos p", photos);
    }) / static_cast<double>(photos);
    fmt::print(
        "Memory a photo of {}: {:.0f} bytes as an item, {:.0f} as a struct\n", photos, perPhoto, perStruct);
}

void compareInserting(const fs::path& folder)
{
    constexpr std::size_t count = 100'000;
    std::vector<NewPhoto> photos;
    for (std::size_t n = 0; n < count; ++n)
        photos.push_back({.folderID = 1,
            .path = fmt::format("/home/ana/Pictures/Archive/{:04}/IMG_{:06}.JPG", n / 500, n),
            .addedAt = 1.7e9,
            .fileDate = 1.2e9 + static_cast<double>(n),
            .fileSize = 5'000'000,
            .metadata = {"Photo of a temple gate", fmt::format("Temple gate {}", n),
                "Shot for the autumn issue", "travel, night, people", "Ana Müller", "© 2022 Ana Müller"}});
    const auto library = folder / "inserting";
    std::unique_ptr<Catalog> catalog;
    const auto empty = [&] {
        catalog.reset();
        fs::remove_all(library);
        catalog = std::make_unique<Catalog>(library, SystemClock());
        catalog->addFolder("/home/ana/Pictures", 1);
    };
    compare("Inserting 100000 photos",
        {{"Catalog::addPhotos", [&] { catalog->addPhotos(photos); }, empty},
            {"bare loop", [&] { insertBare(library / "catalog.sqlite", photos); }, empty}});
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
        {{"LibraryStore::setRating (undo, items, signal)", [&] { store.setRating(ids, rating); }, next},
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
    const int firstSize = argc > 1 && std::string_view(argv[1]) == "groups" ? 2 : 1;
    if (argc > firstSize)
        sizes.clear();
    for (int i = firstSize; i < argc; ++i)
        sizes.push_back(std::strtoull(argv[i], nullptr, 10));
    const auto folder = fs::temp_directory_path() / "korvo-bench";
    if (firstSize == 2) {
        for (const auto size : sizes)
            compareGroups(libraryOf(folder, size));
        fs::remove_all(folder);
        return 0;
    }
    for (const auto size : sizes)
        compareMemory(libraryOf(folder, size), size);
    for (const auto size : sizes)
        compareLoading(libraryOf(folder, size), size);
    for (const auto size : sizes)
        compareGroups(libraryOf(folder, size));
    compareInserting(folder);
    compareRating(libraryOf(folder, 100'000));
    fs::remove_all(folder);
}
