#include "tests/support/TestLibrary.h"

#include <type_traits>
#include <variant>

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

std::string contentOf(Catalog& catalog)
{
    std::string text;
    for (const char* table :
        {"folders", "photos", "albums", "album_items", "stacks", "smart_albums", "projects", "keywords"})
        for (const auto& row :
            catalog.database().query(std::string("SELECT * FROM ") + table + " ORDER BY 1, 2")) {
            text += table;
            for (const auto& [column, value] : row)
                if (column != "dirty")
                    std::visit(
                        [&](const auto& v) {
                            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(v)>>)
                                text += " " + column + "=" + std::to_string(v);
                            else
                                text += " " + column + "=" + std::string(v.begin(), v.end());
                        },
                        value);
            text += '\n';
        }
    return text;
}

} // namespace korvo
