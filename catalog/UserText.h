#pragma once

#include <exception>
#include <string>

namespace korvo {

/// What went wrong and what to do about it, as the user reads it: of a DatabaseError by its code; of the
/// standard library's on a file the file and the reason; what() of any other.
std::string textForUser(const std::exception& error);

} // namespace korvo
