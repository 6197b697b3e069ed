#include "metadata/exiftool/ExifToolError.h"

namespace korvo {

ExifToolError ExifToolError::notFound()
{
    return {
        Case::notFound, "exiftool not found. Install it (brew install exiftool) or bundle it in the app."};
}

ExifToolError ExifToolError::failed(const std::string& message)
{
    return {Case::failed, message.empty() ? "exiftool failed." : message};
}

std::string textForUser(const ExifToolError& error)
{
    const bool missing = error.which() == ExifToolError::Case::notFound;
    return std::string(error.what())
        + (missing ? " On Debian and Ubuntu: apt install libimage-exiftool-perl" : "");
}

} // namespace korvo
