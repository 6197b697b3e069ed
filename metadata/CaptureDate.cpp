#include "metadata/CaptureDate.h"

#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <fmt/format.h>

namespace korvo {

namespace {

constexpr std::int64_t minute = 60, hour = 60 * minute, day = 24 * hour;

/// Reads fields of digits and what separates them from the front of a text.
class Scanner {
public:
    explicit Scanner(std::string_view text) : text_(text) { }

    /// A number of at least one and at most `most` digits.
    Scanner& number(int& value, std::size_t most)
    {
        const auto digits = text_.substr(0, most);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        ok_ = ok_ && error == std::errc() && !digits.starts_with('-');
        if (ok_)
            text_.remove_prefix(static_cast<std::size_t>(end - digits.data()));
        return *this;
    }

    Scanner& literal(char c)
    {
        ok_ = ok_ && text_.starts_with(c);
        if (ok_)
            text_.remove_prefix(1);
        return *this;
    }

    explicit operator bool() const { return ok_; }
    std::string_view rest() const { return text_; }

private:
    std::string_view text_;
    bool ok_ = true;
};

bool isFraction(std::string_view text)
{
    return text.empty()
        || (text.starts_with('.') && text.find_first_not_of("0123456789", 1) == std::string_view::npos);
}

/// Seconds since 1970 that a clock set to UTC would take the date for.
std::optional<std::int64_t> clockTime(std::string_view text)
{
    int year = 0, month = 0, dayOfMonth = 0, hours = 0, minutes = 0, seconds = 0;
    Scanner scanner(trimmed(text));
    scanner.number(year, 4).literal(':').number(month, 2).literal(':').number(dayOfMonth, 2).literal(' ');
    scanner.number(hours, 2).literal(':').number(minutes, 2).literal(':').number(seconds, 2);
    const std::chrono::year_month_day date(std::chrono::year(year),
        std::chrono::month(static_cast<unsigned>(month)),
        std::chrono::day(static_cast<unsigned>(dayOfMonth)));
    if (!scanner || !isFraction(scanner.rest()) || year < 1 || !date.ok() || hours > 23 || minutes > 59
        || seconds > 59)
        return std::nullopt;
    return std::chrono::sys_days(date).time_since_epoch().count() * day + hours * hour + minutes * minute
        + seconds;
}

std::optional<std::int64_t> offsetFromUtc(std::string_view text)
{
    const auto offset = trimmed(text);
    if (offset.size() != 6 || (offset[0] != '+' && offset[0] != '-'))
        return std::nullopt;
    int hours = 0, minutes = 0;
    Scanner scanner(offset.substr(1));
    scanner.number(hours, 2).literal(':').number(minutes, 2);
    if (!scanner || !scanner.rest().empty() || hours > 23 || minutes > 59)
        return std::nullopt;
    return (offset[0] == '-' ? -1 : 1) * (hours * hour + minutes * minute);
}

std::int64_t localOffset(std::int64_t instant)
{
    const auto time = static_cast<std::time_t>(instant);
    std::tm parts{};
    return ::localtime_r(&time, &parts) ? parts.tm_gmtoff : 0;
}

/// The instant at which a clock in the user's time zone shows the time.
std::int64_t localInstant(std::int64_t clock)
{
    const auto before = localOffset(clock - day), after = localOffset(clock + day);
    const auto later = clock - after;
    return before == after || localOffset(later) == after ? later : clock - before;
}

} // namespace

std::optional<UnixTime> parseCaptureDate(
    std::string_view dateTimeOriginal, std::string_view offsetTimeOriginal)
{
    const auto clock = clockTime(dateTimeOriginal);
    if (!clock)
        return std::nullopt;
    const auto offset = offsetFromUtc(offsetTimeOriginal);
    return static_cast<UnixTime>(offset ? *clock - *offset : localInstant(*clock));
}

std::string exifDate(std::int64_t seconds)
{
    using namespace std::chrono;
    const sys_time<std::chrono::seconds> instant{std::chrono::seconds(seconds)};
    const auto midnight = floor<days>(instant);
    const year_month_day date(midnight);
    const hh_mm_ss time(instant - midnight);
    const int year = static_cast<int>(date.year());
    if (year < 1 || year > 9999)
        return {};
    return fmt::format("{:04}:{:02}:{:02} {:02}:{:02}:{:02}", year, static_cast<unsigned>(date.month()),
        static_cast<unsigned>(date.day()), time.hours().count(), time.minutes().count(),
        time.seconds().count());
}

} // namespace korvo
