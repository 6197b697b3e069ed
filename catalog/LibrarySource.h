#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace korvo {

/// What the sidebar's selection lists. Where none is chosen (std::nullopt) the whole library is listed.
struct LibrarySource {
    enum class Kind : std::uint8_t {
        folder,
        album,
        smartAlbum,
        project,
        person,
        extensionSource,
        noAltText,
        flagged,
        recentlyAdded,
        videos,
        faces,
        places,
        versions ///< a master and what was made of it
    };

    Kind kind;
    std::int64_t id = 0; // of the folder, album, smart album, project, person or master
    std::string extension; // names the source that an extension contributes

    friend bool operator==(const LibrarySource&, const LibrarySource&) = default;
};

/// What parseSource reads, for help: "all, folder:ID, …".
std::string sourceNames();

/// The source of a text as the command line takes it: "all", "folder:3", "album:3", "smart:3", "project:3",
/// "person:3", "versions:3", "flagged", "no-alt", "recent", "videos", "faces", "places". Throws
/// std::invalid_argument.
std::optional<LibrarySource> parseSource(std::string_view text);

/// The text that parseSource reads; "all" for a source that it cannot name.
std::string sourceText(const std::optional<LibrarySource>& source);

} // namespace korvo

template <>
struct std::hash<korvo::LibrarySource> {
    std::size_t operator()(const korvo::LibrarySource& source) const
    {
        return (static_cast<std::size_t>(source.kind) * 31 + std::hash<std::int64_t>()(source.id)) * 31
            + std::hash<std::string>()(source.extension);
    }
};
