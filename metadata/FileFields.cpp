#include "metadata/FileFields.h"

#include "base/Json.h"
#include "base/Text.h"
#include "metadata/CameraFacts.h"
#include "metadata/DescriptiveReader.h"
#include "metadata/MetadataError.h"
#include "metadata/exiftool/ExifToolRecords.h"

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
/// So much older than our clock says, its date shows that already.
constexpr auto surelyAbandonedAfter = 1min;
constexpr auto timeBetweenLooks = 100ms;

std::vector<ExifToolRecord> read(const RunExifTool& run, std::span<const fs::path> files)
try {
    return parseRecords(run(readArguments(files)));
} catch (const JsonError& error) {
    throw ExifToolError::failed(std::string("exiftool's answer cannot be read: ") + error.what());
}

/// What the tool reads of a file, and where that is nothing, what our own reader does, which also takes a
/// text that is there in another language only. The tool's JSON makes "TRUE" a lower-case truth value; our
/// own reader knows how it was written.
PhotoMetadata fieldsIn(const ExifToolRecord& record, const fs::path& file)
{
    auto fields = descriptiveFields(record);
    const auto own = photoMetadata(readDescriptive(file));
    const auto isTruth = [](const SharedText& text) { return text == "true" || text == "false"; };
    forEachField<PhotoMetadata>([&](const auto& field) {
        auto& value = fields.*field.member;
        const auto& other = own.*field.member;
        if (value.empty() || (isTruth(value) && asciiLower(other.view()) == value.view()))
            value = other;
    });
    return fields;
}

/// The tool writes damaged XMP anew without what it could not read of it.
FieldsInFile found(const ExifToolRecord& record, const fs::path& file)
try {
    if (hasDamagedXmp(file))
        return {std::nullopt, damagedXmp};
    return {fieldsIn(record, file), ""};
} catch (const MetadataError& error) {
    return {std::nullopt, error.reason()};
}

FieldsInFile readAlone(const RunExifTool& run, const fs::path& file)
try {
    const auto records = read(run, std::span(&file, 1));
    if (records.size() != 1)
        throw ExifToolError::failed("");
    return found(records.front(), file);
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
    auto changed = fs::last_write_time(unfinished, gone);
    auto since = std::chrono::steady_clock::now(); // dates may come from another clock
    while (!gone && !stop.stop_requested()) {
        if (fs::file_time_type::clock::now() - changed > surelyAbandonedAfter
            || std::chrono::steady_clock::now() - since > abandonedAfter)
            return fs::remove(unfinished, gone);
        std::this_thread::sleep_for(timeBetweenLooks);
        if (const auto now = fs::last_write_time(unfinished, gone); now != changed) {
            changed = now;
            since = std::chrono::steady_clock::now();
        }
    }
    return static_cast<bool>(gone);
}

/// The fields as they are read again once the tool has written them: it takes what stands between ", " for
/// creators of their own, of which the first one counts.
PhotoMetadata readBack(PhotoMetadata written)
{
    const auto creator = written.creator.string();
    written.creator = SharedText(creator.substr(0, creator.find(", ")));
    return written;
}

} // namespace

std::vector<FieldsInFile> readFields(
    const RunExifTool& run, std::span<const fs::path> files, const std::stop_token& stop)
{
    std::map<std::string, const ExifToolRecord*> byName;
    const auto records = files.size() > 1 ? readTogether(run, files) : std::vector<ExifToolRecord>();
    for (const auto& record : records)
        byName.emplace(record.sourceFile, &record);
    std::vector<FieldsInFile> results;
    for (const auto& file : files) {
        if (stop.stop_requested())
            break;
        // Names that are not UTF-8 do not come back as they were, and might be taken for one another.
        if (const auto record = byName.find(file.native()); record != byName.end() && isUtf8(file.native()))
            results.push_back(found(*record->second, file));
        else
            results.push_back(readAlone(run, file));
    }
    return results;
}

FileState fileState(const fs::path& file)
{
    return {modificationTime(file), static_cast<std::int64_t>(fs::file_size(file))};
}

bool isAsKnown(const FileRecord& record, const FileState& state)
{
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

std::optional<PhotoMetadata> mergedWith(
    const PhotoMetadata& inFile, const FileRecord& record, const FileState& state)
{
    const bool isChanged = record.base && record.fileSize && !isAsKnown(record, state);
    const auto base = record.base.value_or(PhotoMetadata()), baseRead = readBack(base);
    bool clash = false;
    auto merged = record.metadata;
    forEachField<PhotoMetadata>([&](const auto& field) {
        auto& ours = merged.*field.member;
        const auto &theirs = inFile.*field.member, &before = base.*field.member;
        if (theirs == before || theirs == baseRead.*field.member)
            return;
        if (ours == before)
            ours = theirs;
        else if (isChanged && ours != theirs)
            clash = true;
    });
    return clash ? std::nullopt : std::optional(std::move(merged));
}

} // namespace korvo
