#pragma once

#include <stdexcept>
#include <string>

namespace korvo {

/// A failure that says more to the user than what() holds.
class UserError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;

    /// What went wrong and what to do about it.
    virtual std::string textForUser() const = 0;
};

/// What went wrong and what to do about it, as the user reads it: what a UserError says; of the standard
/// library's on a file the file and the reason; what() of any other.
std::string textForUser(const std::exception& error);

} // namespace korvo
