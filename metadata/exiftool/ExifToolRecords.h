#pragma once

#include "catalog/PhotoMetadata.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

/// What exiftool says of one file: under group and tag ("XMP-dc:Title") the texts, several of
/// a list. "SourceFile" holds the path.
struct ExifToolRecord {
    std::string sourceFile;
    std::map<std::string, std::vector<std::string>, std::less<>> values;
};

/// The records of the tool's JSON; objects without a file are passed over. Numbers and truth values come as
/// the texts they are. Throws JsonError.
std::vector<ExifToolRecord> parseRecords(std::string_view json);

/// The descriptive fields of a record. XMP comes before IPTC, and IPTC before EXIF.
PhotoMetadata descriptiveFields(const ExifToolRecord& record);

} // namespace korvo
