#pragma once

#include <string>
#include <vector>

namespace korvo {

/// Keywords as a file lists them, trimmed and without empty ones. A single entry may hold several between
/// commas.
std::vector<std::string> tidyKeywords(std::vector<std::string> entries);

} // namespace korvo
