#include "metadata/MetadataFiles.h"

#include "base/Json.h"
#include "base/Text.h"
#include "metadata/ExifToolRecords.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <thread>

namespace korvo {

namespace fs = std::filesystem;

namespace {

using namespace std::chrono_literals;

/// Some file systems, and some ways of copying a catalog, keep dates less exactly.
constexpr double sameDate = 0.001;

/// The tool's unfinished file: while it is there the tool refuses to write. After this time without a change
/// nobody works on it any more.
constexpr auto abandonedAfter = 10s;
constexpr auto timeBetweenLooks = 100ms;

std::vector<ExifToolRecord> read(const RunExifTool& run, std::span<const fs::path> files)
try {
    return parseRecords(run(readArguments(files)));
} catch (const JsonError& error) {
    throw ExifToolError::failed(std::string("exiftool's answer cannot be read: ") + error.what());
}

FieldsInFile readAlone(const RunExifTool& run, const fs::path& file)
try {
    const auto records = read(run, std::span(&file, 1));
    if (records.size() != 1)
        throw ExifToolError::failed("");
    return {descriptiveFields(records.front()), ""};
} catch (const ExifToolError& error) {
    return {std::nullopt, error.what()};
}

std::vector<ExifToolRecord> readTogether(const RunExifTool& run, std::span<const fs::path> files)
try {
    return read(run, files);
} catch (const ExifToolError&) {
    return {}; // one bad file fails the whole call; each is asked for by itself then
}

/// Waits until nobody works on the tool's unfinished file any more, and removes it. Returns whether the file
/// is free now.
bool clearUnfinished(const fs::path& unfinished, const std::stop_token& stop)
{
    std::error_code gone; // it may vanish at any time, which is what we wait for
    while (!stop.stop_requested()) {
        const auto changed = fs::last_write_time(unfinished, gone);
        if (gone)
            return true;
        if (fs::file_time_type::clock::now() - changed > abandonedAfter)
            return fs::remove(unfinished, gone);
        std::this_thread::sleep_for(timeBetweenLooks);
    }
    return false;
}

} // namespace

std::vector<FieldsInFile> readFields(
    const RunExifTool& run, std::span<const fs::path> files, const std::stop_token& stop)
{
    std::map<std::string, const ExifToolRecord*> found;
    const auto records = files.size() > 1 ? readTogether(run, files) : std::vector<ExifToolRecord>();
    for (const auto& record : records)
        found.emplace(record.sourceFile, &record);
    std::vector<FieldsInFile> results;
    for (const auto& file : files) {
        if (stop.stop_requested())
            break;
        // Names that are not UTF-8 do not come back as they were, and might be taken for one another.
        if (const auto record = found.find(file.native()); record != found.end() && isUtf8(file.native()))
            results.push_back({descriptiveFields(*record->second), ""});
        else
            results.push_back(readAlone(run, file));
    }
    return results;
}

bool mayBeWritten(const fs::path& file)
{
    std::error_code unresolved; // a file that is gone is not written either way
    for (const auto& path : {file, fs::weakly_canonical(file, unresolved)})
        for (const auto& folder : path.parent_path())
            if (asciiLower(folder.extension().native()) == ".aplibrary")
                return false;
    return true;
}

FileState fileState(const fs::path& file)
{
    return {modificationTime(file), static_cast<std::int64_t>(fs::file_size(file))};
}

bool isAsKnown(const FileRecord& record)
{
    const auto state = fileState(record.path);
    return record.fileSize == state.size && record.fileDate
        && std::abs(*record.fileDate - state.date) < sameDate;
}

void changeFile(const RunExifTool& run, const fs::path& file, const ChangeArguments& arguments,
    const std::stop_token& stop)
{
    std::error_code unresolved; // the tool says what is wrong with a link that leads nowhere
    const auto target = fs::is_symlink(file, unresolved) ? fs::weakly_canonical(file, unresolved) : file;
    auto unfinished = target;
    unfinished += "_exiftool_tmp";
    try {
        run(arguments(target));
    } catch (const ExifToolError&) {
        if (!fs::exists(unfinished, unresolved) || !clearUnfinished(unfinished, stop))
            throw;
        run(arguments(target));
    }
}

PhotoMetadata completedFrom(const PhotoMetadata& record, const PhotoMetadata& inFile)
{
    auto fields = record;
    forEachField<PhotoMetadata>([&](const auto& field) {
        if ((fields.*field.member).empty())
            fields.*field.member = inFile.*field.member;
    });
    return fields;
}

} // namespace korvo
