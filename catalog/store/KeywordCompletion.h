#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

class Catalog;

/// The entry of a keyword list that is being typed: from behind the comma before the cursor to the cursor.
struct TypedKeyword {
    std::size_t start; // in bytes, where the entry's own text begins
    std::size_t end; // in bytes: the cursor
    std::string_view text; // without blanks before it
};
TypedKeyword typedKeyword(std::string_view list, std::size_t cursor);

/// A list in which the typed entry was completed, and where the cursor is then, in bytes.
struct CompletedKeywords {
    std::string list;
    std::size_t cursor;
};
CompletedKeywords completed(std::string_view list, std::size_t cursor, std::string_view keyword);

/// The keywords of the library, of its photos and of its list, each once, in alphabetical order. On a
/// connection of its own, so that it keeps nobody waiting; any thread. Throws DatabaseError.
std::vector<std::string> libraryKeywords(const Catalog& catalog);

/// Those that begin with the typed text, then those of which a later word does, without those that the list
/// has already; at most `most`.
std::vector<std::string> suggestions(
    std::span<const std::string> known, std::string_view list, std::size_t cursor, std::size_t most);

} // namespace korvo
