#pragma once

#include <filesystem>
#include <vector>

namespace korvo::bench {

/// Thumbnails of JPEGs as plainly as turbojpeg allows, several files at once: each is decoded at the smallest
/// of its scales that has the size, averaged over areas, and stored with quality 80 as `folder`/0.jpg and so
/// on. Throws std::runtime_error if one fails.
void plainThumbnails(const std::vector<std::filesystem::path>& files, const std::filesystem::path& folder,
    int workers, int size);

} // namespace korvo::bench
