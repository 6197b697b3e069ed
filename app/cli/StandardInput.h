#pragma once

#include <stop_token>
#include <string>

namespace korvo {

/// All that standard input holds, up to its end. A stop request ends the wait for more at once: then throws
/// Interrupted. Throws std::system_error when the input cannot be read.
std::string readStandardInput(const std::stop_token& stop);

} // namespace korvo
