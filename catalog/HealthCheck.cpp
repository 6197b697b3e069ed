#include "catalog/HealthCheck.h"

#include <filesystem>

namespace korvo {

namespace fs = std::filesystem;

namespace {

void checkIntegrity(Database& database, std::vector<std::string>& problems)
{
    auto statement = database.prepare("PRAGMA integrity_check");
    while (statement.step())
        if (const auto finding = statement.text(0); finding != "ok")
            problems.push_back("database: " + std::string(finding));
}

void checkReferences(Database& database, std::vector<std::string>& problems)
{
    auto statement = database.prepare("PRAGMA foreign_key_check");
    while (statement.step())
        problems.push_back("database: row " + std::to_string(statement.integer(1)) + " of "
            + std::string(statement.text(0)) + " refers to a row of " + std::string(statement.text(2))
            + " that does not exist");
}

std::string photoProblem(const fs::path& path, std::string_view filename)
{
    if (!path.is_absolute())
        return "not an absolute path";
    if (path.filename().native() != filename)
        return "stored under the other name " + std::string(filename);
    std::error_code error;
    if (!fs::exists(path, error))
        return error ? error.message() : "missing";
    return {};
}

struct FileToCheck {
    PhotoID id;
    fs::path path;
    std::string filename;
};

/// The next masters behind an id. They come in pages: a disk that answers slowly must not keep the catalog
/// from others.
std::vector<FileToCheck> filesToCheck(Database& database, PhotoID after)
{
    std::vector<FileToCheck> files;
    auto statement
        = database.kept("SELECT id, path, filename FROM photos WHERE version_of IS NULL AND id > ? "
                        "ORDER BY id LIMIT 1000");
    statement.bind(after);
    while (statement.step())
        files.push_back({statement.integer(0), statement.text(1), std::string(statement.text(2))});
    return files;
}

void checkFiles(Database& database, HealthReport& report, const std::function<bool(std::size_t)>& progress)
{
    auto files = filesToCheck(database, 0);
    for (; !files.empty(); files = filesToCheck(database, files.back().id))
        for (const auto& [id, path, filename] : files) {
            if (const auto problem = photoProblem(path, filename); !problem.empty())
                report.problems.push_back(std::to_string(id) + "  " + path.string() + ": " + problem);
            if (report.stopped = !progress(++report.photos); report.stopped)
                return;
        }
}

void checkBackups(const fs::path& folder, std::vector<std::string>& problems)
{
    std::size_t backups = 0;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        if (!entry.path().filename().string().ends_with(".sqlite"))
            continue;
        ++backups;
        try {
            auto copy = Database::openReadOnly(entry.path());
            auto statement = copy.prepare("PRAGMA quick_check(1)");
            statement.step();
            if (const auto finding = statement.text(0); finding != "ok")
                problems.push_back("backup " + entry.path().string() + ": " + std::string(finding));
        } catch (const DatabaseError& failure) {
            problems.push_back("backup " + entry.path().string() + ": " + failure.message());
        }
    }
    if (backups == 0)
        problems.push_back("no backup of the catalog in " + folder.string());
}

} // namespace

HealthReport checkHealth(Catalog& catalog, const std::function<bool(std::size_t)>& progress)
{
    HealthReport report;
    checkIntegrity(catalog.database(), report.problems);
    checkReferences(catalog.database(), report.problems);
    checkFiles(catalog.database(), report, progress);
    checkBackups(catalog.backupsFolder(), report.problems);
    return report;
}

} // namespace korvo
