#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace korvo {

/// Seconds since 1 January 1970, 00:00 UTC, with fractions: every date in the catalog.
using UnixTime = double;

/// The same moment.
UnixTime unixTime(std::filesystem::file_time_type time);
std::filesystem::file_time_type fileTime(UnixTime time);

/// The file's last modification. Throws std::filesystem::filesystem_error.
UnixTime modificationTime(const std::filesystem::path& file);

/// The local calendar day as "yyyy-MM-dd".
std::string localDay(UnixTime time);

/// The local date and time as "yyyy-MM-dd HH:mm:ss".
std::string localDateTime(UnixTime time);

/// A local calendar day: from its first moment to before its end, whatever the clocks do on it.
struct DaySpan {
    UnixTime start;
    UnixTime end;
};

/// The local day of a text "yyyy-MM-dd"; nothing for any other text and for days that no calendar has.
std::optional<DaySpan> localDaySpan(std::string_view text);

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
