#pragma once

#include "catalog/sql/Database.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace korvo {

/// How much one reading of a bundle's database may do. Pages of a damaged file, or of one that was made to do
/// harm, can refer to each other such that a few of them hold more rows than anyone can read.
class BundleBounds {
public:
    BundleBounds(std::uint64_t fileSize, std::stop_token stop);

    void restart();
    /// Counts steps of SQLite; whether it has to end here.
    bool endsAfter(std::uint64_t steps);
    /// Counts bytes that are taken over. Throws std::length_error when there are too many.
    void take(std::uint64_t bytes);
    bool isSpent() const { return steps_ > mostSteps_; }

private:
    std::stop_token stop_;
    std::uint64_t mostSteps_;
    std::uint64_t mostBytes_;
    std::uint64_t steps_ = 0;
    std::uint64_t bytes_ = 0;
};

/// A row that is being read. Columns are read by their place; what is NULL, or of another kind, is the
/// default or nothing.
class BundleRow {
public:
    BundleRow(const Statement& row, BundleBounds& bounds) : row_(row), bounds_(bounds) { }

    std::int64_t integer(int column) const { return row_.integer(column); }
    bool isTrue(int column) const { return row_.integer(column) != 0; }
    std::optional<std::int64_t> optionalInteger(int column) const { return row_.optionalInteger(column); }
    std::optional<double> optionalNumber(int column) const
    {
        return row_.isNumber(column) ? std::optional(row_.real(column)) : std::nullopt;
    }
    std::string text(int column) const { return copied(row_.text(column)); }
    std::optional<std::string> optionalText(int column) const
    {
        return row_.isNull(column) ? std::nullopt : std::optional(text(column));
    }
    std::string bytes(int column) const
    {
        const auto blob = row_.blob(column);
        return copied({reinterpret_cast<const char*>(blob.data()), blob.size()});
    }

private:
    std::string copied(std::string_view text) const
    {
        bounds_.take(text.size());
        return std::string(text);
    }

    const Statement& row_;
    BundleBounds& bounds_;
};

/// A database of a bundle, which others made: opened as an immutable file, its schema not trusted. A request
/// to stop ends a reading with a DatabaseError, as do bounds that go with the size of the file. Calls may
/// come from several threads.
class BundleDatabase {
public:
    /// Throws DatabaseError, also when something calls itself a table of Aperture's that is none.
    explicit BundleDatabase(const std::filesystem::path& file, const std::stop_token& stop = {});

    /// Calls use(BundleRow) for each row. Throws DatabaseError, which names the file.
    template <typename Use, typename... Args>
    void forEach(std::string_view sql, Use use, const Args&... args)
    {
        reading([&] { readRows(sql, use, args...); }, sql);
    }

    /// The same for a table that not every version of Aperture has: one that is not there has no rows.
    template <typename Use>
    void forEachIfThere(std::string_view sql, Use use)
    {
        try {
            forEach(sql, use);
        } catch (const DatabaseError& error) {
            if (error.which() != DatabaseError::Case::prepare)
                throw;
        }
    }

private:
    template <typename Use, typename... Args>
    void readRows(std::string_view sql, Use& use, const Args&... args)
    {
        const ConnectionLock lock(database_.handle()); // the bounds are those of one reading
        bounds_->restart();
        auto row = database_.kept(sql);
        row.bind(args...);
        while (row.step())
            use(BundleRow(row, *bounds_));
    }

    template <typename Read>
    void reading(Read read, std::string_view sql)
    {
        try {
            read();
        } catch (const DatabaseError& error) {
            fail(error);
        } catch (const std::length_error& error) {
            fail(DatabaseError::step(error.what(), std::string(sql)));
        }
    }

    [[noreturn]] void fail(const DatabaseError& error) const;
    void refuseWhatIsNoTable();

    std::filesystem::path file_;
    Database database_;
    std::unique_ptr<BundleBounds> bounds_; // where SQLite's callback finds it
};

} // namespace korvo
