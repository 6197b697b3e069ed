#include "aperture/BundleDatabase.h"

#include <stdexcept>

namespace korvo {

namespace {

constexpr auto tooMuch = "the database is damaged: it holds more than its file has room for";

/// Rows of Aperture's are read in less than a step a byte, and take up less than their file.
constexpr std::uint64_t stepsPerByte = 4;
constexpr std::uint64_t bytesPerByte = 16; // texts that rows share are read with each of them
constexpr std::uint64_t leastSteps = 1'000'000;
constexpr std::uint64_t leastBytes = std::uint64_t(64) << 20;

constexpr int largestValue = 64 << 20; // bytes: no archive of Aperture's comes near it
constexpr int stepsBetweenLooks = 1000;

std::uint64_t sizeOf(const std::filesystem::path& file)
{
    std::error_code unreadable; // which opening it says better
    const auto size = std::filesystem::file_size(file, unreadable);
    return unreadable ? 0 : size;
}

} // namespace

BundleBounds::BundleBounds(std::uint64_t fileSize, std::stop_token stop)
    : stop_(std::move(stop)), mostSteps_(leastSteps + stepsPerByte * fileSize),
      mostBytes_(leastBytes + bytesPerByte * fileSize)
{ }

void BundleBounds::restart()
{
    steps_ = 0;
    bytes_ = 0;
}

bool BundleBounds::endsAfter(std::uint64_t steps)
{
    steps_ += steps;
    return isSpent() || stop_.stop_requested();
}

void BundleBounds::take(std::uint64_t bytes)
{
    bytes_ += bytes;
    if (bytes_ > mostBytes_)
        throw std::length_error(tooMuch);
}

BundleDatabase::BundleDatabase(const std::filesystem::path& file, const std::stop_token& stop)
    : file_(file), database_(Database::openReadOnly(file)),
      bounds_(std::make_unique<BundleBounds>(sizeOf(file), stop))
{
    sqlite3_limit(database_.handle(), SQLITE_LIMIT_LENGTH, largestValue);
    sqlite3_progress_handler(
        database_.handle(), stepsBetweenLooks,
        [](void* bounds) { return int(static_cast<BundleBounds*>(bounds)->endsAfter(stepsBetweenLooks)); },
        bounds_.get());
    refuseWhatIsNoTable();
}

/// Views, virtual tables and computed columns would run what their maker wrote.
void BundleDatabase::refuseWhatIsNoTable()
{
    std::string found;
    forEach(
        "SELECT name FROM pragma_table_list WHERE schema = 'main' AND name LIKE 'RK%' AND type != 'table'",
        [&](const BundleRow& row) { found = row.text(0); });
    if (found.empty()) // before what is no table is asked for its columns
        forEach("SELECT l.name FROM pragma_table_list l, pragma_table_xinfo(l.name) x "
                "WHERE l.schema = 'main' AND l.name LIKE 'RK%' AND x.hidden != 0",
            [&](const BundleRow& row) { found = row.text(0); });
    if (!found.empty())
        throw DatabaseError::open(file_.string() + ": " + found + " is no table of Aperture's");
}

void BundleDatabase::fail(const DatabaseError& error) const
{
    const auto message = file_.string() + ": " + (bounds_->isSpent() ? tooMuch : error.message());
    throw error.which() == DatabaseError::Case::prepare ? DatabaseError::prepare(message, error.sql())
                                                        : DatabaseError::step(message, error.sql());
}

} // namespace korvo
