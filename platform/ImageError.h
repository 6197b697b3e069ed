#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace korvo {

/// A picture that cannot be read or written. what() is the text for the user: which file, and why.
class ImageError : public std::runtime_error {
public:
    enum class Case {
        open, ///< the file cannot be opened or read
        unknown, ///< it is no picture that we know
        damaged,
        tooLarge, ///< more pixels than we take; told before any memory is asked for
        unsupported, ///< a kind or a feature that cannot be decoded
        memory, ///< decoding needed more memory than it may have
        crashed, ///< the decoder process ended on this file
        timedOut,
        stopped, ///< by the caller's stop request
        write ///< the picture could not be encoded or stored
    };

    ImageError(Case which, const std::filesystem::path& file, const std::string& reason);

    Case which() const { return which_; }
    /// The text without the file's name.
    const std::string& reason() const { return reason_; }

private:
    Case which_;
    std::string reason_;
};

} // namespace korvo
