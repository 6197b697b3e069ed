#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace korvo {

/// What exiftool says of one file: by group and tag ("EXIF:Make") the values, as text.
using ExifToolAnswer = std::map<std::string, std::vector<std::string>>;

bool hasExifTool();

/// Asks exiftool for some tags of many files at once. `groups` is "-G0" or "-G1", the groups the names begin
/// with.
std::map<std::filesystem::path, ExifToolAnswer> askExifTool(const std::vector<std::filesystem::path>& files,
    const std::string& groups, const std::vector<std::string>& tags);

} // namespace korvo
