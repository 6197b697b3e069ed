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

std::string ExifToolError::textForUser() const
{
    return std::string(what()) + (which_ == Case::notFound ? exiftoolOnDebian : "");
}

} // namespace korvo
