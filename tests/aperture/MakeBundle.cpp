// make_bundle FOLDER MASTERS: an Aperture library of so many masters, for scripts that import one.
#include "tests/support/ApertureBundle.h"

#include <fmt/format.h>

#include <cstdlib>
#include <utility>

using namespace korvo;

int main(int count, char** arguments)
{
    if (count != 3)
        return 2;
    ApertureBundle bundle(arguments[1]);
    const auto project = bundle.addFolder("Project", 2);
    const auto keyword = bundle.addKeyword("bridge");
    std::vector<std::int64_t> album;
    std::vector<BundleVersion> stack;
    for (int i = 0; i < std::atoi(arguments[2]); ++i) {
        const auto master = bundle.add({.name = fmt::format("IMG_{:05}.JPG", i),
            .folder = fmt::format("2012/03/{:02}", i % 28),
            .versions = 1 + i % 2,
            .rating = i % 6,
            .project = project,
            .adjustments = {{"RKExposureOperation", {{"inputEV", PlistDraft(0.01 * i)}}}}});
        bundle.assignKeyword(master.versions[0].id, keyword);
        album.push_back(master.versions[0].id);
        stack.push_back(master.versions[0]);
        if (stack.size() == 4)
            bundle.addStack(std::exchange(stack, {}), std::nullopt);
        if (album.size() == 100)
            bundle.addAlbum(fmt::format("Album {}", i), 3, std::exchange(album, {}));
    }
    ApertureBundle::finish(std::move(bundle));
}
