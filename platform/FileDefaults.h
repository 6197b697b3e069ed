#pragma once

#include "platform/Defaults.h"

#include <filesystem>

namespace korvo {

/// Preferences as one small file a key, so that programs that run at the same time change different keys
/// without undoing each other.
class FileDefaults : public Defaults {
public:
    /// Takes away what killed programs left behind there.
    explicit FileDefaults(std::filesystem::path folder);

    std::optional<std::string> get(std::string_view key) const override;
    void set(std::string_view key, std::string_view value) override;

private:
    std::filesystem::path folder_;
};

} // namespace korvo
