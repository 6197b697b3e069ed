#pragma once

#include <filesystem>

namespace korvo::bench {

/// Smart albums and automatic stacking over the photos of a library, each beside its yardstick.
void compareGroups(const std::filesystem::path& library);

} // namespace korvo::bench
