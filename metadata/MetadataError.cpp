#include "metadata/MetadataError.h"

#include "base/Text.h"

#include <system_error>
#include <utility>

namespace korvo {

MetadataError::MetadataError(Case which, const std::filesystem::path& file, int systemError)
    : MetadataError(which, file,
        (which == Case::open ? "can't be opened: " : "can't be read: ")
            + std::generic_category().message(systemError))
{ }

MetadataError::MetadataError(Case which, const std::filesystem::path& file, std::string reason)
    : std::runtime_error(repairedUtf8(file.filename().string()) + " " + reason), which_(which),
      reason_(std::move(reason))
{ }

} // namespace korvo
