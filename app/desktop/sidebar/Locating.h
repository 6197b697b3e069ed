#pragma once

#include <cstdint>
#include <filesystem>

namespace korvo {

class Desktop;

/// Follows an added folder that was moved or renamed on disk to where the user says it is, once a job has
/// found its photos there.
void locateInBackground(Desktop& desktop, std::int64_t folder, const std::filesystem::path& place);

} // namespace korvo
