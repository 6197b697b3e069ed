#pragma once

#include "app/pictures/PhotoRender.h"
#include "catalog/store/LibraryStore.h"
#include "edits/AutoEnhance.h"

#include <functional>

namespace korvo {

/// What auto enhance sees in a photo as it was taken, whatever its edits are.
struct AutoLook {
    std::optional<AutoEnhance::Values> values; ///< none when there is nothing to see
    std::string note; ///< what the user should know of the picture, or empty
};

/// Throws ImageError.
AutoLook autoLook(ImageReader& reader, const std::filesystem::path& file, const std::stop_token& stop);

/// What auto enhance proposes for a photo.
struct AutoProposal {
    PhotoID photo = 0;
    AutoEnhance::Values values;
};

/// Looks at each of the photos. Those that cannot be seen are told to `failed`, as a sentence, and left out.
std::vector<AutoProposal> autoProposals(ImageReader& reader, std::span<const PhotoItem> photos,
    const std::stop_token& stop, const std::function<void(std::size_t done)>& progress,
    const std::function<void(std::string)>& failed);

/// Sets the proposed exposure, contrast and vibrance, and nothing else, in one step.
void applyAuto(LibraryStore& store, std::span<const AutoProposal> proposals);

} // namespace korvo
