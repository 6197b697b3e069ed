#include "catalog/LibrarySource.h"

#include "base/Text.h"

#include <iterator>
#include <stdexcept>

namespace korvo {

namespace {

using Kind = LibrarySource::Kind;

struct Name {
    std::string_view text;
    Kind kind;
};

constexpr Name fixed[]
    = {{"flagged", Kind::flagged}, {"no-alt", Kind::noAltText}, {"recent", Kind::recentlyAdded},
        {"videos", Kind::videos}, {"faces", Kind::faces}, {"places", Kind::places}};
constexpr Name numbered[] = {{"folder:", Kind::folder}, {"album:", Kind::album}, {"smart:", Kind::smartAlbum},
    {"project:", Kind::project}, {"person:", Kind::person}, {"versions:", Kind::versions}};

} // namespace

std::string sourceNames()
{
    std::string names = "all";
    for (const auto& [prefix, kind] : numbered)
        names += ", " + std::string(prefix) + "ID";
    for (const auto& [name, kind] : fixed)
        names += ", " + std::string(name);
    return names;
}

std::optional<LibrarySource> parseSource(std::string_view text)
{
    if (text == "all")
        return std::nullopt;
    for (const auto& [name, kind] : fixed)
        if (text == name)
            return LibrarySource{kind, 0, {}};
    for (const auto& [prefix, kind] : numbered)
        if (text.starts_with(prefix))
            if (const auto id = wholeNumber<std::int64_t>(text.substr(prefix.size())))
                return LibrarySource{kind, *id, {}};
    throw std::invalid_argument("no source \"" + std::string(text) + "\": use " + sourceNames());
}

std::string sourceText(const std::optional<LibrarySource>& source)
{
    if (!source)
        return "all";
    for (const auto& [name, kind] : fixed)
        if (kind == source->kind)
            return std::string(name);
    for (const auto& [prefix, kind] : numbered)
        if (kind == source->kind)
            return std::string(prefix) + std::to_string(source->id);
    return "all";
}

} // namespace korvo
