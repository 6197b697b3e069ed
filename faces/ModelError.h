#pragma once

#include <exception>
#include <string>

namespace korvo {

/// Why a model was not installed, where neither the download nor the file system is to blame.
class ModelError : public std::exception {
public:
    enum class Case {
        checksum, ///< the bytes are not those of the model
        busy, ///< another process is fetching it
        noFiles, ///< there is nothing to fetch
    };

    /// `model` is the name as ModelSet has it.
    ModelError(Case which, const std::string& model);

    Case which() const { return which_; }
    const char* what() const noexcept override { return text_.c_str(); }

private:
    Case which_;
    std::string text_;
};

} // namespace korvo
