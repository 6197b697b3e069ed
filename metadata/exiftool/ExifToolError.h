#pragma once

#include "base/UserError.h"

namespace korvo {

/// What keeps exiftool from doing its work; what() is what the tool itself says, where it says anything.
class ExifToolError : public UserError {
public:
    enum class Case { notFound, failed };

    static ExifToolError notFound();
    static ExifToolError failed(const std::string& message);

    Case which() const { return which_; }
    /// For a missing tool also how to install it on this system.
    std::string textForUser() const override;

private:
    ExifToolError(Case which, const std::string& text) : UserError(text), which_(which) { }

    Case which_;
};

/// How it is installed on this system, behind a text that says that it is missing.
constexpr auto exiftoolOnDebian = " On Debian and Ubuntu: apt install libimage-exiftool-perl";

/// What is shown in the settings while there is no exiftool.
constexpr auto exiftoolRequired
    = "exiftool is required to read & write metadata. Install with:  brew install exiftool";

} // namespace korvo
