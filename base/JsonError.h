#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

namespace korvo {

/// Why JSON text could not be read or written. what() is a sentence that names the value it is about.
class JsonError : public std::exception {
public:
    enum class Case {
        syntax, ///< not JSON at all, or text behind the value
        notUtf8,
        tooDeep, ///< more nested arrays and objects than are allowed
        tooLong, ///< text of more than 2 GiB
        wrongKind, ///< text for a number, null for a value that must be there, …
        wrongNumber, ///< a fraction for an integer, or beyond the integer's range
        wrongText, ///< text that is no case of the enumeration, no UUID, …
        missingKey,
        notFinite, ///< a NaN or an infinity to be written
    };

    /// `fault` says what is wrong with the value: "is not a number".
    JsonError(Case which, std::string_view fault);

    Case which() const { return which_; }
    const char* what() const noexcept override { return what_.c_str(); }

    /// Puts the value inside a member or an element of a larger one: the error then speaks of "crop.w".
    void within(std::string_view key);
    void within(std::size_t index);

private:
    void place(std::string step);

    Case which_;
    std::string fault_;
    std::string path_;
    std::string what_;
};

} // namespace korvo
