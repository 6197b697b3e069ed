#include "bench/catalog/GroupBench.h"

#include "bench/support/Compare.h"
#include "catalog/Catalog.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <random>

namespace korvo::bench {

namespace {

using Field = SmartAlbumRule::Field;
using Op = SmartAlbumRule::Op;

const SmartAlbumRules fourRules{
    {{Field::text, Op::contains, "waterline"}, {Field::rating, Op::atLeast, "3"},
        {Field::date, Op::atLeast, "2010-01-01"}, {Field::location, Op::near, "40 km of 35.5, 135.5"}},
    true};

/// The closest that SQL comes: a box for the circle, and no case but that of A to Z.
constexpr auto closestQuery
    = "SELECT COUNT(*) FROM photos WHERE version_of IS NULL AND rating >= 3 "
      "AND COALESCE(capture_date, mtime) >= 1262300400 AND latitude BETWEEN 35.14 AND 35.86 "
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

void inShell(const std::filesystem::path& file, std::string_view query)
{
    if (std::system(fmt::format("sqlite3 '{}' \"{}\" >/dev/null", file.string(), query).c_str()) != 0)
        fmt::print(stderr, "the sqlite3 shell failed\n");
}

void compareMatching(const std::string& title, const std::vector<PhotoItem>& items,
    const SmartAlbumRules& rules, const std::filesystem::path& file, std::string_view query)
{
    std::size_t found = 0;
    compare(title,
        {{"matcher over the items", [&] { found = matching(items, rules); }},
            {"closest query in the sqlite3 shell", [&] { inShell(file, query); }}});
    fmt::print("  {} photos match\n", found);
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
    auto items = Catalog(library, SystemClock()).photos(std::nullopt);
    compareMatching(fmt::format("A smart album of four rules over {} photos", items.size()), items, fourRules,
        file, closestQuery);
    compareMatching(fmt::format("A text rule alone over {} photos", items.size()), items,
        {{{Field::text, Op::contains, "waterline"}}, true}, file, closestTextQuery);
    compareAutoStack(items);
}

} // namespace korvo::bench
