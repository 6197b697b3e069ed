#pragma once

#include <filesystem>
#include <string>

namespace korvo {

/// Seconds since 1 January 1970, 00:00 UTC, with fractions: every date in the catalog.
using UnixTime = double;

/// The file's last modification. Throws std::filesystem::filesystem_error.
UnixTime modificationTime(const std::filesystem::path& file);

/// The local calendar day as "yyyy-MM-dd".
std::string localDay(UnixTime time);

/// The local date and time as "yyyy-MM-dd HH:mm:ss".
std::string localDateTime(UnixTime time);

/// Where code asks what time it is; tests bring their own.
class Clock {
public:
    virtual ~Clock() = default;
    virtual UnixTime now() const = 0;
};

/// The system's clock.
class SystemClock : public Clock {
public:
    UnixTime now() const override;
};

} // namespace korvo
