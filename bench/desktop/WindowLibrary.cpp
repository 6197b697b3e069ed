#include "bench/desktop/WindowLibrary.h"

#include "bench/support/MadeLibrary.h"
#include "catalog/Catalog.h"

#include <fmt/format.h>

namespace korvo::bench {

namespace fs = std::filesystem;

namespace {

constexpr int filesInFolder = 1000;

/// An album of every fiftieth photo, a stack of three (collapsed) in each hundred, and a smart album.
constexpr auto fillGroups = R"(
INSERT INTO albums (name, position) VALUES ('Fiftieth', 1);
INSERT INTO album_items (album_id, photo_id, position) SELECT 1, id, id FROM photos WHERE id % 50 = 0;
INSERT INTO stacks (id, pick_photo_id, collapsed) SELECT id, id, 1 FROM photos WHERE id % 100 = 0;
UPDATE photos SET stack_id = id - id % 100, stack_position = id % 100
  WHERE id % 100 < 3 AND id >= 100 AND id - id % 100 + 2 <= (SELECT MAX(id) FROM photos);
DELETE FROM stacks WHERE id NOT IN (SELECT stack_id FROM photos WHERE stack_id IS NOT NULL);
INSERT INTO smart_albums (name, rules) VALUES
  ('Good', '{"matchAll":true,"rules":[{"field":"rating","op":"atLeast","value":"5"}]}');)";

/// One folder of links, which all the library's folders lead to.
void linkPictures(const fs::path& folder, const std::vector<fs::path>& pictures, int photos)
{
    fs::create_directories(folder / "files");
    for (int i = 0; i < filesInFolder; ++i)
        fs::create_symlink(pictures[static_cast<std::size_t>(i) % pictures.size()],
            folder / "files" / fmt::format("IMG_{:04}.JPG", i));
    for (int i = 0; i * filesInFolder < photos; ++i)
        fs::create_directory_symlink(folder / "files", folder / fmt::format("{:04}", i));
}

} // namespace

void makeWindowLibrary(const fs::path& folder, const std::vector<fs::path>& pictures, int photos)
{
    const auto files = folder.parent_path() / "photos";
    linkPictures(files, pictures, photos);
    Catalog catalog(folder, SystemClock());
    catalog.database().exec(fmt::format(
        fillLibrary, photos, files.native(), "printf('%04d', n / 1000)", "printf('IMG_%04d.JPG', n % 1000)"));
    catalog.database().exec(fillGroups);
}

} // namespace korvo::bench
