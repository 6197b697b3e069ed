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

std::size_t checkFiles(
    Database& database, std::vector<std::string>& problems, const std::function<bool(std::size_t)>& progress)
{
    std::size_t looked = 0;
    auto statement
        = database.prepare("SELECT id, path, filename FROM photos WHERE version_of IS NULL ORDER BY id");
    while (statement.step()) {
        const fs::path path(statement.text(1));
        if (const auto problem = photoProblem(path, statement.text(2)); !problem.empty())
            problems.push_back(std::to_string(statement.integer(0)) + "  " + path.string() + ": " + problem);
        if (!progress(++looked))
            break;
    }
    return looked;
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
            copy.scalar("SELECT COUNT(*) FROM sqlite_master");
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
    report.photos = checkFiles(catalog.database(), report.problems, progress);
    checkBackups(catalog.backupsFolder(), report.problems);
    return report;
}

} // namespace korvo
