#include "metadata/containers/MovieItems.h"

#include "metadata/containers/BoxFields.h"
#include "metadata/containers/IsoBoxes.h"

namespace korvo {

namespace {

constexpr std::size_t mostItems = 1000;

std::vector<std::string_view> keyNames(FileWindow& file, ByteRange keys)
{
    constexpr std::uint64_t versionAndCountSize = 8;
    std::vector<std::string_view> names;
    IsoBoxes boxes(file, keys.from(versionAndCountSize));
    while (const auto box = names.size() < mostItems ? boxes.next() : std::nullopt) {
        const auto name = file.view(box->content);
        names.push_back(name ? name->text() : std::string_view());
    }
    return names;
}

std::string_view textOf(FileWindow& file, ByteRange item)
{
    constexpr std::uint64_t typeAndLocaleSize = 8, utf8 = 1;
    const auto data = findBox(file, item, "data");
    const auto type = data ? file.start(*data, typeAndLocaleSize) : std::nullopt;
    if (!type || type->bigEndian(0, 4) != utf8)
        return {};
    const auto text = file.view(data->from(typeAndLocaleSize));
    return text ? text->text() : std::string_view();
}

} // namespace

std::vector<MovieItem> movieItems(FileWindow& file, ByteRange meta)
{
    // MP4 files put a version before the boxes, QuickTime files do not.
    const auto start = file.start(meta, 8);
    const auto area = start && start->bigEndian(0, 4) == 0U ? meta.from(4) : meta;
    const auto keys = findBox(file, area, "keys"), list = findBox(file, area, "ilst");
    if (!keys || !list)
        return {};
    const auto names = keyNames(file, *keys);
    std::vector<MovieItem> items;
    IsoBoxes boxes(file, *list);
    while (const auto box = items.size() < mostItems ? boxes.next() : std::nullopt) {
        const auto number = Bytes(box->type).bigEndian(0, 4).value_or(0); // of the key, counted from 1
        if (number >= 1 && number <= names.size())
            items.push_back({names[number - 1], textOf(file, box->content)});
    }
    return items;
}

} // namespace korvo
