#include "catalog/PhotoItem.h"

#include "base/Json.h"
#include "base/Text.h"

namespace korvo {

std::filesystem::path PhotoItem::path() const
{
    std::string joined(folder.view());
    joined += '/';
    joined += filename.view();
    return joined;
}

PhotoEdits PhotoItem::edits() const
{
    return editsJSON.empty() ? PhotoEdits() : fromJson<PhotoEdits>(editsJSON.view());
}

std::optional<PhotoEdits> PhotoItem::readableEdits() const
try {
    return hasEdits() ? std::optional(edits()) : std::nullopt;
} catch (const JsonError&) {
    return std::nullopt;
}

std::string ratingText(int rating)
{
    if (rating < 0)
        return "rejected";
    return rating == 0 ? "unrated" : counted(static_cast<std::size_t>(rating), "star");
}

std::string storedEdits(const PhotoEdits& edits)
{
    return isIdentity(edits) ? std::string() : toJson(edits);
}

} // namespace korvo
