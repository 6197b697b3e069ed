#include "metadata/exiftool/ExifTool.h"

#include "base/Text.h"

#include <algorithm>
#include <unistd.h>

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// Linux takes arguments of up to 128 KiB each and 2 MiB in all.
constexpr std::size_t longestArgument = 100'000;
constexpr std::size_t longestCommand = 1'000'000;

bool isExecutable(const fs::path& file)
{
    std::error_code ignored; // what cannot be looked at cannot be run
    return fs::is_regular_file(file, ignored) && access(file.c_str(), X_OK) == 0;
}

std::vector<fs::path> candidates(const ExifToolPlaces& places)
{
    std::error_code ignored;
    std::vector<fs::path> all{
        fs::is_directory(places.bundled, ignored) ? places.bundled / "exiftool" : places.bundled};
    all.insert(all.end(), places.installed.begin(), places.installed.end());
    for (const auto folder : split(places.searchPath, ':'))
        if (folder.starts_with('/')) // others change their meaning with the working folder
            all.push_back(fs::path(folder) / "exiftool");
    return all;
}

bool isTooLong(const ExifToolArguments& arguments)
{
    std::size_t total = 0;
    for (const auto& argument : arguments) {
        if (argument.size() > longestArgument)
            return true;
        total += argument.size() + sizeof(char*);
    }
    return total > longestCommand;
}

} // namespace

std::optional<fs::path> locateExifTool(const ExifToolPlaces& places)
{
    const auto all = candidates(places);
    const auto found = std::find_if(all.begin(), all.end(), isExecutable);
    return found == all.end() ? std::nullopt : std::optional(*found);
}

fs::path ExifTool::path() const
{
    if (auto found = locateExifTool(places_))
        return *std::move(found);
    throw ExifToolError::notFound();
}

std::string ExifTool::run(const ExifToolArguments& arguments, const std::stop_token& stop) const
{
    std::vector<std::string> command{path()};
    const auto lines = isTooLong(arguments) ? argumentLines(arguments) : std::nullopt;
    if (lines)
        command.insert(command.end(), {"-@", "-"});
    else
        command.insert(command.end(), arguments.begin(), arguments.end());
    try {
        return resultOf(launcher_.run(command, lines.value_or(""), stop));
    } catch (const ProcessError& error) {
        throw ExifToolError::failed(error.what());
    }
}

std::string resultOf(const ProcessOutput& output)
{
    if (output.status != 0)
        throw ExifToolError::failed(repairedUtf8(trimmed(output.err)));
    return isUtf8(output.out) ? output.out : std::string();
}

} // namespace korvo
