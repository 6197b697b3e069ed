#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace korvo {

/// A file whose metadata cannot be read because the file itself cannot; what() names the file and the reason.
class MetadataError : public std::runtime_error {
public:
    enum class Case { open, read };

    /// `systemError` is the errno of the call that failed.
    MetadataError(Case which, const std::filesystem::path& file, int systemError);

    Case which() const { return which_; }
    /// The text without the file's name: "can't be opened: No such file or directory".
    const std::string& reason() const { return reason_; }

private:
    MetadataError(Case which, const std::filesystem::path& file, std::string reason);

    Case which_;
    std::string reason_;
};

} // namespace korvo
