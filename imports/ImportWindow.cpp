#include "imports/ImportWindow.h"

#include "base/Text.h"

#include <algorithm>

namespace korvo {

std::optional<std::string_view> paneText(ListingState state, const ImportListing& listing)
{
    if (state == ListingState::nothingChosen)
        return importWindow::nothingChosen;
    if (state == ListingState::listing)
        return importWindow::listing;
    return listing.candidates.empty() ? std::optional(importWindow::nothingFound) : std::nullopt;
}

std::string_view rowText(const Candidate& candidate)
{
    return candidate.picked ? importWindow::willImport : importWindow::wontImport;
}

std::string summary(const Candidate& candidate)
{
    return candidate.file.path.filename().string() + ", " + counted(candidate.file.size, "byte")
        + (candidate.isDuplicate ? ", already in the library" : "");
}

std::size_t pickedCount(const ImportListing& listing)
{
    return static_cast<std::size_t>(std::count_if(listing.candidates.begin(), listing.candidates.end(),
        [](const Candidate& candidate) { return candidate.picked; }));
}

std::string pickedText(const ImportListing& listing)
{
    const auto known = std::count_if(listing.candidates.begin(), listing.candidates.end(),
        [](const Candidate& candidate) { return candidate.isDuplicate; });
    auto text = grouped(pickedCount(listing)) + " of " + counted(listing.candidates.size(), "photo")
        + " will be imported";
    if (known > 0)
        text += ", " + grouped(static_cast<std::size_t>(known)) + (known == 1 ? " is" : " are")
            + " already in the library";
    return text;
}

std::string statusText(std::size_t files)
{
    return "Copying " + counted(files, "file") + "…";
}

std::string progressText(std::size_t index, std::size_t total, std::string_view sourceName)
{
    return "Copying " + grouped(index) + " of " + grouped(total) + " from " + std::string(sourceName);
}

std::string ejectText(std::string_view name, const std::optional<std::string>& failure)
{
    return failure ? "Couldn't eject " + std::string(name) + ": " + *failure
                   : std::string(name) + " ejected.";
}

} // namespace korvo
