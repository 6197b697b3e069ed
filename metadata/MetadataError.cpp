#include "metadata/MetadataError.h"

#include "base/Text.h"

#include <system_error>

namespace korvo {

namespace {

std::string description(MetadataError::Case which, const std::filesystem::path& file, int systemError)
{
    const char* failure = which == MetadataError::Case::open ? " can't be opened: " : " can't be read: ";
    return repairedUtf8(file.filename().string()) + failure + std::generic_category().message(systemError);
}

} // namespace

MetadataError::MetadataError(Case which, const std::filesystem::path& file, int systemError)
    : std::runtime_error(description(which, file, systemError)), which_(which)
{ }

} // namespace korvo
