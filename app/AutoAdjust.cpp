#include "app/AutoAdjust.h"

#include <array>

namespace korvo {

namespace {

constexpr int analysisSize = 512; // of the longer side, in pixels

} // namespace

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
            const auto rendered = renderPhoto(reader, {.file = photo.path(), .size = analysisSize}, stop);
            if (const auto statistics = AutoEnhance::statistics(rendered.image))
                proposals.push_back({photo.id, AutoEnhance::values(*statistics)});
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
    store.perform("Auto Enhance", [&](Catalog& catalog) {
        for (const auto& [id, values] : proposals)
            if (const auto photo = catalog.photo(id)) {
                auto edits = photo->edits();
                AutoEnhance::apply(values, AutoEnhance::Fields::panel, edits);
                catalog.saveEdits(std::array{id}, edits);
            }
    });
}

} // namespace korvo
