#pragma once

#include <filesystem>
#include <stdexcept>

namespace korvo {

/// A file whose metadata cannot be read because the file itself cannot; what() names the file and the reason.
class MetadataError : public std::runtime_error {
public:
    enum class Case { open, read };

    /// `systemError` is the errno of the call that failed.
    MetadataError(Case which, const std::filesystem::path& file, int systemError);

    Case which() const { return which_; }

private:
    Case which_;
};

} // namespace korvo
