#include "bench/catalog/GroupBench.h"

#include "bench/support/Compare.h"
#include "bench/support/MadeLibrary.h"
#include "catalog/AutoStack.h"
#include "catalog/Catalog.h"
#include "catalog/SmartAlbumMatcher.h"
#include "catalog/store/SourceReading.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>

namespace korvo::bench {

namespace {

using Field = SmartAlbumRule::Field;
using Op = SmartAlbumRule::Op;

/// Each rule holds for a share of the photos that does not depend on how many there are: 60, 50, some 75 and
/// 25 %.
SmartAlbumRules fourRules(const std::string& day)
{
    return {{{Field::text, Op::contains, "waterline"}, {Field::rating, Op::atLeast, "3"},
                {Field::date, Op::atLeast, day}, {Field::location, Op::near, "40 km of 35.5, 135.5"}},
        true};
}

/// The day by which a quarter of so many photos was taken.
std::string dayOfFirstQuarter(std::size_t photos)
{
    const double time = firstCapture + captureDistance * static_cast<double>(photos) / 4;
    return fmt::format("{:%Y-%m-%d}", fmt::gmtime(static_cast<std::time_t>(time)));
}

/// The closest that SQL comes: a box for the circle, which holds a quarter more, and no case but that of A to
/// Z.
constexpr auto closestQuery
    = "SELECT COUNT(*) FROM photos WHERE version_of IS NULL AND rating >= 3 "
      "AND COALESCE(capture_date, mtime) >= CAST(strftime('%s', '{}', 'utc') AS INTEGER) AND "
      "latitude BETWEEN 35.14 AND 35.86 "
      "AND longitude BETWEEN 135.06 AND 135.94 AND (title LIKE '%waterline%' OR caption LIKE '%waterline%' "
      "OR alt_text LIKE '%waterline%' OR keywords LIKE '%waterline%' OR creator LIKE '%waterline%' "
      "OR copyright LIKE '%waterline%')";
constexpr auto closestTextQuery = "SELECT COUNT(*) FROM photos WHERE version_of IS NULL AND "
                                  "(title || caption || alt_text || keywords || creator || copyright) "
                                  "LIKE '%waterline%'";

std::size_t matching(const std::vector<PhotoItem>& items, const SmartAlbumRules& rules)
{
    SmartAlbumMatcher matcher(rules);
    return static_cast<std::size_t>(std::count_if(
        items.begin(), items.end(), [&](const PhotoItem& item) { return matcher.matches(item); }));
}

std::size_t countedInShell(const std::filesystem::path& file, std::string_view query)
{
    const auto command = fmt::format("sqlite3 '{}' \"{}\"", file.string(), query);
    std::unique_ptr<FILE, int (*)(FILE*)> shell(popen(command.c_str(), "r"), pclose);
    unsigned long count = 0;
    if (!shell || std::fscanf(shell.get(), "%lu", &count) != 1)
        throw std::runtime_error("the sqlite3 shell failed");
    return count;
}

void compareMatching(const std::string& title, const std::vector<PhotoItem>& items,
    const SmartAlbumRules& rules, const std::filesystem::path& file, std::string_view query)
{
    double found = 0, foundInShell = 0;
    compare(title,
        {{"matcher over the items", [&] { found = static_cast<double>(matching(items, rules)); }},
            {"closest query in the sqlite3 shell",
                [&] { foundInShell = static_cast<double>(countedInShell(file, query)); }}});
    fmt::print("  {} photos match, {} in the shell\n", found, foundInShell);
    if (found == 0 || found > foundInShell || found < 0.7 * foundInShell) // a circle has 0.79 of its box
        throw std::runtime_error("the matcher and the shell do not find about the same");
}

void compareAutoStack(std::vector<PhotoItem>& items)
{
    std::mt19937 random(1);
    std::shuffle(items.begin(), items.end(), random); // no order helps the sorting
    std::vector<std::uint32_t> positions(items.size());
    std::iota(positions.begin(), positions.end(), 0U);
    std::vector<double> times;
    for (double interval : {1.0, 401.0}) // none are so near, all are
        compare(fmt::format("Auto-stacking {} photos, {} s", items.size(), interval),
            {{"AutoStackPlan", [&] { AutoStackPlan(items, positions, interval); }},
                {"sorting their times",
                    [&] {
                        times.reserve(items.size());
                        for (const auto& item : items)
                            times.push_back(*item.captureDate);
                        std::sort(times.begin(), times.end());
                    },
                    [&] { times = {}; }}});
}

} // namespace

void compareGroups(const std::filesystem::path& library)
{
    const auto file = library / "catalog.sqlite";
    Catalog catalog(library, SystemClock());
    auto items = readSource(catalog.database(), std::nullopt, [] { return ListArrangement(); }).list.items();
    const auto day = dayOfFirstQuarter(items.size());
    compareMatching(fmt::format("A smart album of four rules over {} photos", items.size()), items,
        fourRules(day), file, fmt::format(closestQuery, day));
    compareMatching(fmt::format("A text rule alone over {} photos", items.size()), items,
        {{{Field::text, Op::contains, "waterline"}}, true}, file, closestTextQuery);
    compareAutoStack(items);
}

} // namespace korvo::bench
