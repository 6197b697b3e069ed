#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace korvo {

/// An operation on something that the library does not hold: a photo, project, album, stack, keyword…
class NotFoundError : public std::runtime_error {
public:
    NotFoundError(std::string_view noun, std::int64_t id)
        : std::runtime_error("no " + std::string(noun) + " with the id " + std::to_string(id))
    { }
};

/// A smart album whose stored rules this program cannot read. They stay as they are.
class SmartAlbumError : public std::runtime_error {
public:
    SmartAlbumError(std::string_view name, std::string_view reason)
        : std::runtime_error(
            "the rules of the smart album “" + std::string(name) + "” cannot be read: " + std::string(reason))
    { }
};

} // namespace korvo
