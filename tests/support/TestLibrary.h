#pragma once

#include "catalog/Catalog.h"
#include "tests/support/TemporaryFolder.h"

#include <memory>
#include <string>
#include <vector>

namespace korvo {

/// A clock that stands until the test moves it.
class ManualClock : public Clock {
public:
    UnixTime now() const override { return time; }
    UnixTime time = 1'700'000'000;
};

/// An open library in a temporary folder, with builders for what tests put into it.
class TestLibrary {
public:
    TestLibrary() : catalog(std::make_unique<Catalog>(folder / "Library", clock)) { }

    /// Adds a master of that name in /photos.
    PhotoID photo(const std::string& name, const PhotoMetadata& metadata = {});
    /// Adds a version of a master by hand.
    PhotoID version(PhotoID master, const std::string& name = "Version 2");
    /// The file names of what a source lists.
    std::vector<std::string> names(const std::optional<LibrarySource>& source = std::nullopt);
    PhotoItem item(PhotoID id) { return catalog->photo(id).value(); }

    TemporaryFolder folder;
    ManualClock clock;
    std::unique_ptr<Catalog> catalog;
};

/// Every row of every table that undo brings back, as a text.
std::string contentOf(Catalog& catalog);

/// One id as the list that most operations take.
inline std::vector<PhotoID> only(PhotoID id)
{
    return {id};
}

} // namespace korvo
