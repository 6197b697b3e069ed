#include "metadata/containers/IsoBoxes.h"

namespace korvo {

namespace {

constexpr std::uint64_t shortHeader = 8, longHeader = 16, identifierSize = 16;
constexpr std::uint64_t sizeFollows = 1, reachesToTheEnd = 0;

} // namespace

std::optional<IsoBoxes::Box> IsoBoxes::next()
{
    const auto header = file_.start(rest_, shortHeader);
    if (!header)
        return std::nullopt;
    auto headerSize = shortHeader;
    auto size = header->bigEndian(0, 4).value_or(0);
    if (size == sizeFollows) {
        const auto whole = file_.start(rest_, longHeader);
        headerSize = longHeader;
        size = whole ? whole->bigEndian(shortHeader, 8).value_or(0) : 0;
    } else if (size == reachesToTheEnd) {
        size = rest_.length;
    }
    if (size < headerSize)
        return std::nullopt;
    Box box{header->text().substr(4), rest_.first(size).from(headerSize)};
    if (const auto identifier = box.type == "uuid" ? file_.start(box.content, identifierSize) : std::nullopt)
        box = {identifier->text(), box.content.from(identifierSize)};
    rest_ = rest_.from(size);
    return box;
}

std::optional<ByteRange> findBox(FileWindow& file, ByteRange area, std::string_view type)
{
    IsoBoxes boxes(file, area);
    while (const auto box = boxes.next())
        if (box->type == type)
            return box->content;
    return std::nullopt;
}

} // namespace korvo
