#include "app/cli/PhotoOrFile.h"

#include "base/Text.h"
#include "platform/PosixFile.h"

#include <stdexcept>

namespace korvo {

PhotoOrFile photoOrFile(Context& context, const std::string& text, const std::optional<std::string>& edits)
{
    PhotoOrFile result{wholeNumber<PhotoID>(text), text, {}};
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
    return text.starts_with('@') ? readWholeFile(text.substr(1)) : text;
}

} // namespace korvo
