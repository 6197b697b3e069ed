#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvo {

/// The user's preferences: small values under keys that begin with "korvo_". Values are bytes, so that paths
/// keep whatever their file system allows.
class Defaults {
public:
    virtual ~Defaults() = default;

    /// The value of a key; nothing when it was never set or cannot be read.
    virtual std::optional<std::string> get(std::string_view key) const = 0;

    /// Replaces the value; after a crash the old or the new one stands. Throws std::system_error.
    virtual void set(std::string_view key, std::string_view value) = 0;

    /// The same, but for a value that stands there already.
    void setIfOther(std::string_view key, std::string_view value)
    {
        if (get(key) != value)
            set(key, value);
    }
};

} // namespace korvo
