#include "platform/ImageError.h"

namespace korvo {

ImageError::ImageError(Case which, const std::filesystem::path& file, const std::string& reason)
    : std::runtime_error(file.string() + ": " + reason), which_(which), reason_(reason)
{ }

} // namespace korvo
