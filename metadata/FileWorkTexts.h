#pragma once

#include "metadata/Coordinate.h"
#include "metadata/MetadataSave.h"

#include <string>

namespace korvo {

// What work on photos' files has to say at its end.

std::string saveSummary(const FilesWritten& result);
std::string revertSummary(const FilesWritten& result);
std::string shiftSummary(const FilesWritten& result);
std::string positionSummary(const FilesWritten& result, const std::optional<Coordinate>& position);
/// Of an adjustment that was taken back.
std::string takenBackSummary(const FilesWritten& result, const std::string& title);

/// What the user is asked before a revert, and the title above it.
constexpr auto revertTitle = "Revert metadata?";
std::string revertQuestion(std::size_t photos);

} // namespace korvo
