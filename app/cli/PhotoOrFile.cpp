#include "app/cli/PhotoOrFile.h"

#include <charconv>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace korvo {

namespace {

std::optional<PhotoID> idIn(const std::string& text)
{
    PhotoID id = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(id) : std::nullopt;
}

} // namespace

PhotoOrFile photoOrFile(Context& context, const std::string& text, const std::optional<std::string>& edits)
{
    PhotoOrFile result{idIn(text), text, {}};
    if (result.photo) {
        const auto item = existingPhoto(context, *result.photo);
        result.file = item.path();
        result.edits = item.edits();
    }
    if (edits)
        result.edits = fromJson<PhotoEdits>(textOrFile(*edits));
    return result;
}

PhotoItem existingPhoto(Context& context, PhotoID id)
{
    auto item = context.library().photo(id);
    if (!item)
        throw std::runtime_error("no photo with the id " + std::to_string(id));
    return *std::move(item);
}

std::string textOrFile(const std::string& text)
{
    if (!text.starts_with('@'))
        return text;
    std::ifstream file(text.substr(1), std::ios::binary);
    std::string contents(std::istreambuf_iterator<char>(file), {});
    if (!file)
        throw std::runtime_error("cannot read " + text.substr(1));
    return contents;
}

} // namespace korvo
