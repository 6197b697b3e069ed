#include "app/pictures/AutoAdjust.h"

#include "base/JsonError.h"

#include <array>

namespace korvo {

namespace {

constexpr int analysisSize = 512; // of the longer side, in pixels

} // namespace

AutoLook autoLook(ImageReader& reader, const std::filesystem::path& file, const std::stop_token& stop)
{
    const auto rendered = renderPhoto(reader, {.file = file, .size = analysisSize}, stop);
    const auto statistics = AutoEnhance::statistics(rendered.image);
    return {statistics ? std::optional(AutoEnhance::values(*statistics)) : std::nullopt, rendered.note};
}

std::vector<AutoProposal> autoProposals(ImageReader& reader, std::span<const PhotoItem> photos,
    const std::stop_token& stop, const std::function<void(std::size_t)>& progress,
    const std::function<void(std::string)>& failed)
{
    std::vector<AutoProposal> proposals;
    std::size_t done = 0;
    for (const auto& photo : photos) {
        if (stop.stop_requested())
            break;
        try {
            photo.edits(); // none are added to edits that cannot be read
            if (const auto values = autoLook(reader, photo.path(), stop).values)
                proposals.push_back({photo.id, *values});
        } catch (const JsonError& error) {
            failed(photo.path().string() + ": its adjustments cannot be read: " + error.what());
        } catch (const std::exception& error) {
            if (!stop.stop_requested())
                failed(error.what());
        }
        progress(++done);
    }
    return proposals;
}

void applyAuto(LibraryStore& store, std::span<const AutoProposal> proposals)
{
    const auto change = [proposals = std::vector(proposals.begin(), proposals.end())](Catalog& catalog) {
        for (const auto& [id, values] : proposals)
            if (const auto photo = catalog.photo(id)) {
                auto edits = photo->edits();
                AutoEnhance::apply(values, AutoEnhance::Fields::panel, edits);
                catalog.saveEdits(std::array{id}, edits);
            }
    };
    store.perform("Auto Enhance", change, proposals.size());
}

} // namespace korvo
