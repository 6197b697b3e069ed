#pragma once

#include <string>
#include <string_view>

namespace korvo {

/// The camera as the catalog names it: its maker and its model, unless the model says the maker already.
std::string cameraName(std::string_view make, std::string_view model);

} // namespace korvo
