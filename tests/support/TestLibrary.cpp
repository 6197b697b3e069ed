#include "tests/support/TestLibrary.h"

namespace korvo {

PhotoID TestLibrary::photo(const std::string& name, const PhotoMetadata& metadata)
{
    NewPhoto photo{.path = "/photos/" + name, .metadata = metadata};
    photo.addedAt = clock.now();
    return catalog->addPhotos(std::span(&photo, 1)).front().id;
}

PhotoID TestLibrary::version(PhotoID master, const std::string& name)
{
    return catalog->database().insert(
        "INSERT INTO photos (path, filename, added_at, title, version_of, version_name) "
        "SELECT path, filename, added_at, title, id, ? FROM photos WHERE id = ?",
        name, master);
}

std::vector<std::string> TestLibrary::names(const std::optional<LibrarySource>& source)
{
    std::vector<std::string> names;
    for (const auto& item : catalog->photos(source))
        names.push_back(item.filename.string());
    return names;
}

} // namespace korvo
