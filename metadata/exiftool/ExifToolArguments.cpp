#include "metadata/exiftool/ExifToolArguments.h"

#include "catalog/KeywordList.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

/// How every change of a file begins: no copy of the old file is kept, and small faults are passed over.
ExifToolArguments change()
{
    return {"-overwrite_original", "-q", "-m"};
}

/// A name that begins with "-" would be taken for an option.
std::string fileArgument(const std::filesystem::path& file)
{
    return file.native().starts_with('-') ? "./" + file.native() : file.native();
}

void append(ExifToolArguments& all, const ExifToolArguments& more)
{
    all.insert(all.end(), more.begin(), more.end());
}

ExifToolArguments changeOf(const std::filesystem::path& file, const ExifToolArguments& assignments)
{
    auto arguments = change();
    append(arguments, assignments);
    arguments.push_back(fileArgument(file));
    return arguments;
}

/// Of a file to copy from the tool takes "%f" and its kin for parts of the other file's name. A "%0f" gives
/// none of it, and parts a "%" from what follows.
std::string sourceArgument(const std::filesystem::path& file)
{
    std::string argument;
    for (const char byte : fileArgument(file))
        argument += byte == '%' ? std::string("%%0f") : std::string(1, byte);
    return argument;
}

/// Whether a line of an argument file is taken as it stands: the tool drops blanks at its beginning and one
/// behind the first "=".
bool standsAsLine(const std::string& argument)
{
    const auto assigned = argument.find('=');
    return !argument.empty() && argument.find_first_of("\r\n") == argument.npos
        && std::string_view("# \t\v\f").find(argument.front()) == std::string_view::npos
        && argument.compare(assigned == argument.npos ? argument.size() : assigned, 2, "= ") != 0;
}

/// In an escaped line the tool leaves a backslash before each "$" and "@".
bool standsEscaped(const std::string& argument)
{
    return standsAsLine(argument) || argument.find_first_of("$@") == argument.npos;
}

/// A value in HTML, from which the option -E has the tool make it again.
std::string htmlLine(const std::string& argument)
{
    std::string line;
    for (const char byte : argument)
        if (byte == '&')
            line += "&amp;";
        else if (byte == '\n' || byte == '\r' || (byte == ' ' && line.ends_with('=')))
            line += fmt::format("&#{};", static_cast<int>(byte));
        else
            line += byte;
    return line;
}

std::string escapedLine(const std::string& argument)
{
    std::string line = "#[CSTR]";
    for (const char byte : argument)
        if (const auto at = std::string_view("\n\r\\\"").find(byte); at != std::string_view::npos)
            line.append({'\\', "nr\\\""[at]});
        else
            line += byte;
    return line;
}

} // namespace

ExifToolArguments readArguments(std::span<const std::filesystem::path> files)
{
    ExifToolArguments arguments{"-j", "-q", "-m", "-G1", "-XMP-iptcCore:AltTextAccessibility",
        "-XMP-dc:Title", "-IPTC:ObjectName", "-XMP-dc:Description", "-IPTC:Caption-Abstract",
        "-XMP-dc:Subject", "-IPTC:Keywords", "-XMP-dc:Creator", "-IPTC:By-line", "-IFD0:Artist",
        "-XMP-dc:Rights", "-IPTC:CopyrightNotice", "-IFD0:Copyright"};
    for (const auto& file : files)
        arguments.push_back(fileArgument(file));
    return arguments;
}

ExifToolArguments writeArguments(const PhotoMetadata& metadata, const std::filesystem::path& file)
{
    const auto title = metadata.title.string(), caption = metadata.caption.string();
    const auto creator = metadata.creator.string(), copyright = metadata.copyright.string();
    const auto keywords = joinKeywords(splitKeywords(metadata.keywords.view()));
    return changeOf(file,
        {"-charset", "iptc=utf8", "-sep", ", ", "-codedcharacterset=utf8",
            "-XMP-iptcCore:AltTextAccessibility=" + metadata.altText.string(), "-XMP-dc:Title=" + title,
            "-IPTC:ObjectName=" + title, "-XMP-dc:Description=" + caption,
            "-IPTC:Caption-Abstract=" + caption, "-XMP-dc:Subject=" + keywords, "-IPTC:Keywords=" + keywords,
            "-XMP-dc:Creator=" + creator, "-IPTC:By-line=" + creator, "-IFD0:Artist=" + creator,
            "-XMP-dc:Rights=" + copyright, "-IPTC:CopyrightNotice=" + copyright,
            "-IFD0:Copyright=" + copyright});
}

ExifToolArguments shiftDatesArguments(double seconds, const std::filesystem::path& file, FileParts parts)
{
    const auto whole = std::llround(std::abs(seconds));
    const auto ofDay = whole % 86400;
    const auto shift = fmt::format("{}=0:0:{} {}:{}:{}", seconds < 0 ? '-' : '+', whole / 86400, ofDay / 3600,
        ofDay % 3600 / 60, ofDay % 60);
    ExifToolArguments assignments{"-AllDates" + shift};
    if (parts.film) // phones say it here as well, with its zone, and players believe this
        assignments.push_back("-Keys:CreationDate" + shift);
    return changeOf(file, assignments);
}

namespace {

/// Only EXIF has letters of their own for north and south, east and west.
ExifToolArguments exifAssignments(const Coordinate& position)
{
    return {fmt::format("-GPSLatitude={}", std::abs(position.latitude)),
        std::string("-GPSLatitudeRef=") + (position.latitude >= 0 ? "N" : "S"),
        fmt::format("-GPSLongitude={}", std::abs(position.longitude)),
        std::string("-GPSLongitudeRef=") + (position.longitude >= 0 ? "E" : "W")};
}

ExifToolArguments xmpAssignments(const Coordinate& position)
{
    return {fmt::format("-XMP-exif:GPSLatitude={}{}", std::abs(position.latitude),
                position.latitude >= 0 ? "N" : "S"),
        fmt::format("-XMP-exif:GPSLongitude={}{}", std::abs(position.longitude),
            position.longitude >= 0 ? "E" : "W")};
}

/// The places that phones write and players read; a third one would contradict them.
ExifToolArguments filmAssignments(const std::string& position)
{
    return {"-ItemList:GPSCoordinates=", "-UserData:LocationInformation=",
        "-UserData:GPSCoordinates=" + position, "-Keys:GPSCoordinates=" + position};
}

} // namespace

ExifToolArguments writeGPSArguments(
    const Coordinate& position, const std::filesystem::path& file, FileParts parts)
{
    ExifToolArguments assignments;
    if (parts.exif)
        append(assignments, exifAssignments(position));
    if (parts.xmp)
        append(assignments, xmpAssignments(position));
    if (parts.film) // a small number with an exponent would be written as it stands
        append(assignments,
            filmAssignments(fmt::format("{:.6f}, {:.6f}", position.latitude, position.longitude)));
    return changeOf(file, assignments);
}

ExifToolArguments stripGPSArguments(const std::filesystem::path& file, FileParts parts)
{
    ExifToolArguments assignments;
    if (parts.exif)
        assignments.push_back("-GPS:all=");
    if (parts.xmp)
        assignments.push_back("-XMP-exif:GPS*=");
    if (parts.film)
        append(assignments, filmAssignments(""));
    return changeOf(file, assignments);
}

ExifToolArguments exportedExifArguments(const std::filesystem::path& source,
    const std::filesystem::path& picture, int width, int height, const ExportedPosition& position)
{
    ExifToolArguments arguments{"-TagsFromFile", sourceArgument(source), "-EXIF:all",
        "-IFD1:all=", "-Orientation#=1", "-ColorSpace#=1", "-ExifImageWidth=" + std::to_string(width),
        "-ExifImageHeight=" + std::to_string(height)};
    if (position.ofFile == Position::strip)
        arguments.push_back("-GPS:all=");
    if (position.own)
        append(arguments, exifAssignments(*position.own));
    return changeOf(picture, arguments);
}

std::optional<std::string> argumentLines(const ExifToolArguments& arguments)
{
    const bool needHtml = !std::ranges::all_of(arguments, standsEscaped);
    std::string lines = needHtml ? "-E\n" : "";
    for (const auto& argument : arguments)
        if (needHtml && argument.starts_with('-') && argument.find('=') != argument.npos)
            lines += htmlLine(argument) + '\n';
        else if (standsAsLine(argument))
            lines += argument + '\n';
        else if (standsEscaped(argument))
            lines += escapedLine(argument) + '\n';
        else
            return std::nullopt;
    return lines;
}

} // namespace korvo
