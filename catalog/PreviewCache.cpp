#include "catalog/PreviewCache.h"

#include "base/Json.h"
#include "edits/DisabledBricks.h"
#include "platform/Sha256.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sys/stat.h>

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// Goes up when the same edits come to look different.
constexpr auto renderer = "1";

/// What stood there in an earlier form goes: it can be made again.
constexpr auto schema = R"(
    DROP TABLE IF EXISTS previews;
    DROP TABLE IF EXISTS images;
    DROP TABLE IF EXISTS total;
    CREATE TABLE images (id INTEGER PRIMARY KEY, data BLOB NOT NULL);
    CREATE TABLE previews (
        key BLOB PRIMARY KEY, image INTEGER NOT NULL, bytes INTEGER NOT NULL, used INTEGER NOT NULL,
        file_state TEXT NOT NULL
    ) WITHOUT ROWID;
    CREATE INDEX previews_used ON previews (used);
    CREATE TABLE total (id INTEGER PRIMARY KEY CHECK (id = 1), bytes INTEGER NOT NULL);
    INSERT INTO total VALUES (1, 0);
)";

constexpr auto namePrefix = "previews-", nameEnding = ".sqlite";
constexpr std::int64_t secondsBetweenUses = 600; // uses within it count as one, and cost no write
constexpr std::size_t usesInOneWrite = 256;
/// What one store removes at most, so that none keeps the others waiting.
constexpr std::int64_t mostRemoved = 64;

double rounded(double value, double steps)
{
    return std::round(value * steps) / steps + 0.0; // no minus zero
}

std::string textOf(PhotoEdits edits)
{
    edits = withoutDisabledBricks(std::move(edits));
    if (auto& crop = edits.crop)
        crop = {rounded(crop->x, 1e4), rounded(crop->y, 1e4), rounded(crop->w, 1e4), rounded(crop->h, 1e4)};
    if (auto& straighten = edits.straighten)
        straighten = rounded(*straighten, 1e2);
    return isIdentity(edits) ? std::string() : toJson(edits);
}

/// Whether what SQLite could not do says that the file is no good. A full disk or one that is locked or
/// cannot be written passes.
bool isDamage(int code)
{
    switch (code & 0xFF) {
    case SQLITE_OK: // it was not SQLite that failed
    case SQLITE_FULL:
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_IOERR:
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN:
    case SQLITE_NOMEM:
        return false;
    default:
        return true;
    }
}

bool isReady(Database& database)
{
    return std::ranges::count(database.columnsOf("previews"), "file_state") > 0;
}

std::int64_t secondsOf(const Clock& clock)
{
    return static_cast<std::int64_t>(clock.now());
}

} // namespace

PreviewKey previewKey(const PreviewSubject& subject)
{
    Sha256 digest;
    for (const auto& part : {subject.file.native(), std::to_string(subject.size),
             std::to_string(subject.variant), textOf(subject.edits), std::string(renderer)})
        digest.add(Bytes(part.c_str(), part.size() + 1)); // with the NUL, which no path has inside
    const auto text = digest.finish();
    PreviewKey key{};
    for (std::size_t i = 0; i < key.size(); ++i)
        std::from_chars(&text[2 * i], &text[2 * i] + 2, key[i], 16);
    return key;
}

std::optional<std::string> previewState(const fs::path& file)
{
    struct stat status { };
    if (stat(file.c_str(), &status) != 0)
        return std::nullopt;
    return std::to_string(status.st_size) + " " + std::to_string(status.st_mtim.tv_sec) + " "
        + std::to_string(status.st_mtim.tv_nsec);
}

std::int64_t PreviewCache::usualBound(const fs::path& folder)
{
    constexpr std::int64_t millionThumbnails = std::int64_t(60) << 30;
    std::error_code unknown;
    const auto space = fs::space(folder, unknown);
    return unknown ? millionThumbnails
                   : std::min(millionThumbnails, static_cast<std::int64_t>(space.capacity / 10));
}

PreviewCache::PreviewCache(fs::path folder, std::int64_t mostBytes, const Clock& clock)
    : folder_(std::move(folder)), mostBytes_(mostBytes), clock_(clock)
{
    std::error_code ignored; // then there is no cache
    fs::create_directories(folder_, ignored);
    try {
        open(std::max(newestNumber(), 1));
    } catch (const DatabaseError& error) {
        database_.reset();
        if (isDamage(error.code()))
            startAnew();
    }
}

PreviewCache::~PreviewCache()
{
    use([&](Database& database) { flushUses(database); });
}

fs::path PreviewCache::file(int number) const
{
    return folder_ / (namePrefix + std::to_string(number) + nameEnding);
}

/// Of the files that are there; 0 for none.
int PreviewCache::newestNumber() const
{
    int newest = 0;
    std::error_code ignored; // a folder that cannot be listed has none
    for (const auto& entry : fs::directory_iterator(folder_, ignored)) {
        const auto name = entry.path().filename().native();
        int number = 0;
        if (name.starts_with(namePrefix) && name.ends_with(nameEnding)) {
            std::from_chars(
                name.data() + std::string_view(namePrefix).size(), name.data() + name.size(), number);
            newest = std::max(newest, number);
        }
    }
    return newest;
}

void PreviewCache::open(int number)
{
    database_.emplace(file(number));
    number_ = number;
    database_->exec("PRAGMA synchronous = NORMAL"); // a crash may cost the last previews, never the file
    if (isReady(*database_))
        return;
    Transaction transaction(*database_);
    if (!isReady(*database_)) // nobody else was faster
        database_->exec(schema);
    transaction.commit();
}

/// Under a new name: another process may still hold the old file, and would remove its log by name. Another
/// may have begun the new one already.
void PreviewCache::startAnew()
{
    database_.reset();
    const int damaged = std::max(number_, 1);
    try {
        const int newest = newestNumber();
        open(newest > damaged && number_ > 0 ? newest : std::max(newest, damaged) + 1);
    } catch (const DatabaseError&) { // no cache, then
        database_.reset();
        return;
    }
    std::error_code ignored; // what is left over is removed the next time
    for (int number = number_ - 1; number > 0 && number >= number_ - 8; --number)
        for (const auto* const companion : {"", "-wal", "-shm"})
            fs::remove(file(number).native() + companion, ignored);
}

/// Everything that is done with the file: what fails is left undone.
void PreviewCache::use(const Use& use)
{
    const std::scoped_lock lock(mutex_);
    if (!database_)
        return;
    try {
        use(*database_);
    } catch (const DatabaseError& error) {
        if (isDamage(error.code()))
            startAnew();
    }
}

std::optional<KeptPreview> PreviewCache::find(const PreviewKey& key)
{
    std::optional<KeptPreview> kept;
    use([&](Database& database) {
        if (used_.size() >= usesInOneWrite)
            flushUses(database);
        auto statement = database.kept(R"(SELECT data, used, file_state
FROM previews JOIN images ON images.id = previews.image WHERE key = ?)");
        statement.bind(std::span<const std::uint8_t>(key));
        if (!statement.step())
            return;
        const auto bytes = statement.text(0);
        kept = {{bytes.begin(), bytes.end()}, std::string(statement.text(2))};
        if (statement.integer(1) + secondsBetweenUses < secondsOf(clock_))
            used_.push_back(key);
    });
    return kept;
}

void PreviewCache::store(
    const PreviewKey& key, std::string_view fileState, std::span<const std::uint8_t> image)
{
    use([&](Database& database) {
        Transaction transaction(database);
        const auto bytes = static_cast<std::int64_t>(image.size());
        if (database.scalar("SELECT COUNT(*) FROM previews WHERE key = ? AND file_state = ?",
                std::span<const std::uint8_t>(key), fileState)
            == 0) {
            drop(database, key);
            const auto id = database.insert("INSERT INTO images (data) VALUES (?)", image);
            database.run("INSERT INTO previews VALUES (?, ?, ?, ?, ?)", std::span<const std::uint8_t>(key),
                id, bytes, secondsOf(clock_), fileState);
            database.run("UPDATE total SET bytes = bytes + ?", bytes);
            if (database.scalar("SELECT bytes FROM total") > mostBytes_) {
                flushUses(database);
                makeRoom(database);
            }
        }
        transaction.commit();
    });
}

void PreviewCache::remove(const PreviewKey& key)
{
    use([&](Database& database) {
        Transaction transaction(database);
        drop(database, key);
        transaction.commit();
    });
}

void PreviewCache::drop(Database& database, const PreviewKey& key)
{
    const std::span<const std::uint8_t> bytes(key);
    database.run(
        "UPDATE total SET bytes = bytes - IFNULL((SELECT bytes FROM previews WHERE key = ?), 0)", bytes);
    database.run("DELETE FROM images WHERE id = (SELECT image FROM previews WHERE key = ?)", bytes);
    database.run("DELETE FROM previews WHERE key = ?", bytes);
}

void PreviewCache::flushUses(Database& database)
{
    if (used_.empty())
        return;
    const auto keys = std::exchange(used_, {}); // what cannot be written is only a little less exact
    Transaction transaction(database);
    for (const auto& key : keys)
        database.run("UPDATE previews SET used = ? WHERE key = ?", secondsOf(clock_),
            std::span<const std::uint8_t>(key));
    transaction.commit();
}

/// Removes previews, the longest unused first, until no more than the bound is left, or the most for once.
void PreviewCache::makeRoom(Database& database) const
{
    const auto excess = database.scalar("SELECT bytes FROM total") - mostBytes_;
    std::vector<std::pair<std::vector<std::uint8_t>, std::int64_t>> oldest;
    auto statement = database.kept("SELECT key, image, bytes FROM previews ORDER BY used LIMIT ?");
    statement.bind(mostRemoved);
    std::int64_t freed = 0;
    while (freed < excess && statement.step()) {
        const auto key = statement.text(0);
        oldest.emplace_back(std::vector<std::uint8_t>(key.begin(), key.end()), statement.integer(1));
        freed += statement.integer(2);
    }
    for (const auto& [key, image] : oldest) {
        database.run("DELETE FROM images WHERE id = ?", image);
        database.run("DELETE FROM previews WHERE key = ?", std::span<const std::uint8_t>(key));
    }
    database.run("UPDATE total SET bytes = bytes - ?", freed);
}

} // namespace korvo
