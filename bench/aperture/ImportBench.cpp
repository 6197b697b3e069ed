// Importing a bundle of 20,000 masters with 25,000 versions: the time of each step, the writes beside a bare
// loop of prepared inserts of the same rows, the whole of it, and the peak of memory; then bundles of many
// albums and keywords, each twice the size of the one before: the time should double too.
#include "aperture/ApertureImporter.h"
#include "bench/support/Compare.h"
#include "tests/support/ApertureBundle.h"
#include "tests/support/TemporaryFolder.h"

#include <fmt/format.h>

namespace korvo {

namespace {

namespace fs = std::filesystem;
using Plist = PlistDraft;

constexpr int masters = 20'000;

std::vector<BundleAdjustment> adjustments(int i)
{
    return {{"RKRawDecodeOperation", {{"inputBoostAmount", Plist(1.0)}}},
        {"RKExposureOperation",
            {{"inputEV", Plist(0.01 * i)}, {"inputRecoveryEV", Plist(0.2)}, {"inputBias", Plist(2.0)}}},
        {"RKEnhanceOperation",
            {{"inputContrast", Plist(0.2)}, {"inputSaturation", Plist(1.1)}, {"inputVibrancy", Plist(0.3)}}},
        {"RKCropOperation",
            {{"inputXOrigin", Plist(10.0)}, {"inputYOrigin", Plist(20.0)}, {"inputWidth", Plist(1500.0)},
                {"inputHeight", Plist(900.0)}}}};
}

void describe(
    ApertureBundle& bundle, const BundleMaster& master, int i, const std::vector<std::int64_t>& keywords)
{
    for (const auto& version : master.versions) {
        bundle.addExif(version.id, "Make", std::string("Canon"));
        bundle.addExif(version.id, "Model", "Canon EOS 5D Mark II");
        bundle.addExif(version.id, "ISOSpeedRating", 100.0 * (1 + i % 16));
        bundle.addExif(version.id, "FocalLength", 24.0 + i % 80);
        bundle.addExif(version.id, "ApertureValue", 2.8);
        bundle.addIptc(version.id, "ObjectName", fmt::format("Title {}", i));
        bundle.addIptc(version.id, "Byline", "Ann Example");
        for (int k = 0; k < 3; ++k)
            bundle.assignKeyword(version.id, keywords[static_cast<std::size_t>(i * 7 + k) % keywords.size()]);
    }
}

void makeBundle(const fs::path& path)
{
    ApertureBundle bundle(path);
    std::vector<std::string> projects;
    for (int i = 0; i < 200; ++i)
        projects.push_back(bundle.addFolder(fmt::format("Project {}", i), 2));
    std::vector<std::int64_t> keywords;
    for (int i = 0; i < 300; ++i)
        keywords.push_back(bundle.addKeyword(fmt::format("keyword {}", i),
            i < 20 ? std::nullopt : std::optional(keywords[static_cast<std::size_t>(i % 20)])));
    std::vector<std::int64_t> album;
    std::vector<BundleVersion> stack;
    for (int i = 0; i < masters; ++i) {
        const auto master = bundle.add({.name = fmt::format("IMG_{:05}.JPG", i),
            .folder = fmt::format("2012/03/{:02}", i % 28),
            .imageDate = 352e6 + 60 * i,
            .versions = i % 4 == 0 ? 2 : 1,
            .rating = i % 6,
            .isFlagged = i % 9 == 0,
            .label = i % 8 - 1,
            .latitude = 48.0,
            .longitude = 11.0,
            .project = projects[static_cast<std::size_t>(i) % projects.size()],
            .adjustments = i % 2 ? adjustments(i) : std::vector<BundleAdjustment>()});
        describe(bundle, master, i, keywords);
        album.push_back(master.versions[0].id);
        stack.push_back(master.versions[0]);
        if (album.size() == 100)
            bundle.addAlbum(fmt::format("Album {}", i), 3, std::exchange(album, {}));
        if (stack.size() == 20) { // four of them
            stack.resize(4);
            bundle.addStack(std::exchange(stack, {}), std::nullopt);
        }
    }
    ApertureBundle::finish(std::move(bundle));
}

struct TableRows {
    std::string table;
    std::vector<std::vector<sqlite3_value*>> rows; // kept until the process ends
};

TableRows rowsOf(Database& database, const std::string& table)
{
    TableRows all{table, {}};
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database.handle(), ("SELECT * FROM " + table).c_str(), -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        auto& row = all.rows.emplace_back();
        for (int i = 0; i < sqlite3_column_count(statement); ++i)
            row.push_back(sqlite3_value_dup(sqlite3_column_value(statement, i)));
    }
    sqlite3_finalize(statement);
    return all;
}

/// Writes rows as plainly as SQLite allows: prepared inserts in one transaction.
void insertAll(Database& database, const std::vector<TableRows>& tables)
{
    Transaction transaction(database);
    for (const auto& [table, rows] : tables) {
        if (rows.empty())
            continue;
        std::string places = "?";
        for (std::size_t i = 1; i < rows.front().size(); ++i)
            places += ", ?";
        auto insert = database.prepare("INSERT INTO " + table + " VALUES (" + places + ")");
        for (const auto& row : rows) {
            insert.bindValues(row);
            insert.run();
        }
    }
    transaction.commit();
}

void measure(const fs::path& path, const fs::path& target)
{
    const SystemClock clock;
    std::optional<ApertureLibrary> library;
    std::optional<ApertureImportPlan> plan;
    std::optional<Catalog> catalog;
    const double planned = bench::secondsOf([&] {
        library.emplace(ApertureLibrary::open(path));
        plan = ApertureImporter(*library, [](const auto&) {}, {}).plan({});
    });
    const double opened = bench::secondsOf([&] { catalog.emplace(target / "Library", clock); });
    ApertureImporter::Summary summary;
    const double written = bench::secondsOf([&] {
        summary = ApertureImporter(*library, [](const auto&) {}, {}).write(*plan, *catalog, clock).value();
    });
    const double peak = bench::peakMemory();
    fmt::print(
        "{}\n  reading and translating {:.2f} s, making the catalog {:.2f} s, writing {:.2f} s: {:.2f} s\n"
        "  peak of memory {:.0f} MB\n",
        summaryLine(summary), planned, opened, written, planned + opened + written, peak / 1e6);

    std::vector<TableRows> rows;
    for (const char* const table : {"projects", "stacks", "photos", "keywords", "albums", "album_items"})
        rows.push_back(rowsOf(catalog->database(), table));
    int round = 0;
    std::optional<Catalog> empty;
    const auto fresh = [&] { empty.emplace(target / fmt::format("{}", ++round), clock); };
    bench::compare("The whole import",
        {{"import",
            [&] {
                auto bundle = ApertureLibrary::open(path);
                ApertureImporter importer(bundle, [](const auto&) {}, {});
                const auto all = importer.plan({});
                fresh();
                importer.write(*all, *empty, clock);
            }}},
        3);
    bench::compare("Writing the rows",
        {{"ApertureImporter::write",
             [&] { ApertureImporter(*library, [](const auto&) {}, {}).write(*plan, *empty, clock); }, fresh},
            {"prepared inserts", [&] { insertAll(empty->database(), rows); }, fresh}});
}

void makeBundleOfGroups(const fs::path& path, int size)
{
    ApertureBundle bundle(path);
    const auto version = bundle.add({}).versions[0].id;
    for (int i = 0; i < 20 * size; ++i)
        bundle.addKeyword(fmt::format("keyword {}", i));
    for (int i = 0; i < 5 * size; ++i) {
        bundle.addAlbum(fmt::format("Album {}", i), 3, {version});
        bundle.addFolder(fmt::format("Project {}", i), 2);
    }
    ApertureBundle::finish(std::move(bundle));
}

void measureGroups(const fs::path& folder)
{
    const SystemClock clock;
    for (const int size : {500, 1000, 2000}) {
        const auto path = folder / fmt::format("{}.aplibrary", size);
        makeBundleOfGroups(path, size);
        auto library = ApertureLibrary::open(path);
        Catalog catalog(folder / fmt::format("Groups {}", size), clock);
        ApertureImporter importer(library, [](const auto&) {}, {});
        ApertureImportPlan plan;
        const double planned = bench::secondsOf([&] { plan = importer.plan({}).value(); });
        const double written = bench::secondsOf([&] { importer.write(plan, catalog, clock); });
        bench::keepResult(fmt::format("Groups of {}", size), {{"import", planned + written, 0}});
        fmt::print(
            "{} keywords, {} albums and projects, each in one list: reading {:.2f} s, writing {:.2f} s\n",
            20 * size, 5 * size, planned, written);
    }
}

} // namespace

} // namespace korvo

int main()
{
    const korvo::TemporaryFolder folder;
    korvo::makeBundle(folder / "Photos.aplibrary");
    korvo::measure(folder / "Photos.aplibrary", folder.path());
    korvo::measureGroups(folder.path());
}
