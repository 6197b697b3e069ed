#pragma once

#include "metadata/DescriptiveFields.h"
#include "metadata/PhotoExifInfo.h"

#include <filesystem>

namespace korvo {

/// Everything the catalog takes from a file.
struct FileMetadata {
    DescriptiveFields descriptive;
    PhotoExifInfo exif;

    friend bool operator==(const FileMetadata&, const FileMetadata&) = default;
};

/// What a file says in words. XMP comes before IPTC, and IPTC before EXIF. A file without metadata, or of an
/// unknown kind, has empty fields. Throws MetadataError when the file cannot be opened or read.
DescriptiveFields readDescriptive(const std::filesystem::path& file);

/// The same together with camera facts and position, from one look at the file. Throws MetadataError
/// likewise.
FileMetadata readFileMetadata(const std::filesystem::path& file);

/// Whether the file holds EXIF that can be found.
bool hasExif(const std::filesystem::path& file);

/// Whether the file's XMP is damaged, so that whoever writes it anew drops what stands behind the damage.
/// Throws MetadataError likewise.
bool hasDamagedXmp(const std::filesystem::path& file);
/// Why such a file is not written.
inline constexpr auto damagedXmp = "its XMP is damaged, and writing would lose what is left of it";

} // namespace korvo
