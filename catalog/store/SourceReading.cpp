#include "catalog/store/SourceReading.h"

#include "catalog/CatalogErrors.h"
#include "catalog/LibraryReading.h"
#include "catalog/PhotoRows.h"
#include "catalog/SourceQuery.h"
#include "catalog/Stacks.h"
#include "catalog/sql/Database.h"
#include "catalog/store/BackgroundReading.h"
#include "platform/LargePages.h"

#include <future>
#include <limits>
#include <span>

namespace korvo {

namespace {

constexpr std::uint64_t manyPhotos = 50'000; // worth a thread more

struct IDRange {
    std::int64_t first, last;
};

std::size_t countIn(Database& database, IDRange range)
{
    return static_cast<std::size_t>(
        database.scalar("SELECT COUNT(*) FROM photos WHERE version_of IS NULL AND id BETWEEN ? AND ?",
            range.first, range.last));
}

/// Reads a range into as many places as it has photos. The table is gone through as it lies, which an index
/// of the versions would only make slower.
void read(Database& database, IDRange range, std::span<PhotoItem> places, const std::stop_token& stop)
{
    auto statement
        = database.prepare("SELECT * FROM photos WHERE +version_of IS NULL AND id BETWEEN ? AND ?");
    statement.bind(range.first, range.last);
    PhotoRows rows(statement);
    for (PhotoItem& place : places)
        if (!stop.stop_requested() && statement.step())
            place = rows.item();
}

/// Another connection to the same file, in a transaction of its own.
Database another(Database& database, const std::stop_token& stop)
{
    auto other = Database::openForALook(sqlite3_db_filename(database.handle(), "main"));
    endWith(other, stop);
    other.exec("BEGIN");
    return other;
}

} // namespace

std::vector<PhotoItem> allPhotos(Database& database, const std::stop_token& stop)
{
    const IDRange all{database.scalar("SELECT COALESCE(MIN(id), 1) FROM photos"),
        database.scalar("SELECT COALESCE(MAX(id), 0) FROM photos")};
    std::vector<PhotoItem> items;
    const auto reserve = [&](std::size_t count) { // before its pages are touched
        items.reserve(count);
        preferLargePages(items.data(), items.capacity() * sizeof(PhotoItem));
        items.resize(count);
    };
    const auto width = static_cast<std::uint64_t>(all.last) - static_cast<std::uint64_t>(all.first);
    if (all.last < all.first || width < manyPhotos) {
        reserve(countIn(database, all));
        read(database, all, items, stop);
        return items;
    }
    const IDRange early{all.first, all.first + static_cast<std::int64_t>(width / 2)};
    const IDRange late{early.last + 1, std::numeric_limits<std::int64_t>::max()};
    Database other = another(database, stop);
    const auto earlyCount = countIn(database, early);
    reserve(earlyCount + countIn(other, late));
    const std::span<PhotoItem> places(items);
    auto lateHalf
        = std::async(std::launch::async, [&] { read(other, late, places.subspan(earlyCount), stop); });
    read(database, early, places.first(earlyCount), stop);
    lateHalf.get();
    return items;
}

ListOfSource readSource(Database& database, const std::optional<LibrarySource>& source,
    const std::function<ListArrangement()>& arrangement, const std::stop_token& stop)
{
    ListOfSource read;
    database.exec("BEGIN"); // the photos and their stacks are those of one moment
    read.list.setStacks(stacksIn(database));
    std::vector<PhotoItem> items;
    try {
        items = source ? photosIn(database, source, stop) : allPhotos(database, stop);
    } catch (const SmartAlbumError& error) {
        read.fault = error.what(); // the album stays to be mended in the editor, and lists nothing till then
    } catch (const NotFoundError& error) {
        read.fault = error.what(); // it was deleted while it was shown; undo may bring it back
    }
    database.exec("COMMIT"); // the log is not held back while they are put in order
    read.list.wish(arrangement());
    read.list.assign(std::move(items), listedBy(source), stop);
    return read;
}

} // namespace korvo
