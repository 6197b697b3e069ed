#include "base/Dates.h"

#include <chrono>
#include <cmath>
#include <ctime>

namespace korvo {

namespace {

std::string localTime(UnixTime time, const char* pattern)
{
    const auto seconds = static_cast<std::time_t>(std::floor(time));
    std::tm parts{};
    if (!localtime_r(&seconds, &parts))
        return {};
    char text[64];
    return {text, std::strftime(text, sizeof text, pattern, &parts)};
}

std::optional<int> digits(std::string_view text)
{
    int number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
        number = number * 10 + (c - '0');
    }
    return number;
}

std::optional<std::chrono::year_month_day> calendarDay(std::string_view text)
{
    if (text.size() != 10 || text[4] != '-' || text[7] != '-')
        return std::nullopt;
    const auto year = digits(text.substr(0, 4));
    const auto month = digits(text.substr(5, 2));
    const auto day = digits(text.substr(8, 2));
    if (!year || !month || !day)
        return std::nullopt;
    const std::chrono::year_month_day date(std::chrono::year{*year},
        std::chrono::month{static_cast<unsigned>(*month)}, std::chrono::day{static_cast<unsigned>(*day)});
    return date.ok() ? std::optional(date) : std::nullopt;
}

/// The first second whose local day is this one or later. Found by halving, as clocks may be set forward
/// across midnight; no zone is further than a day from UTC. Where they went back across it (St. John's until
/// 2010, by a minute), that minute of the new day counts as the old one.
UnixTime startOfLocalDay(std::chrono::sys_days date)
{
    const auto midnight = static_cast<std::time_t>(std::chrono::sys_seconds(date).time_since_epoch().count());
    const auto dayNumber = [](std::time_t seconds) {
        std::tm parts{};
        localtime_r(&seconds, &parts);
        return (parts.tm_year + 1900) * 10'000 + (parts.tm_mon + 1) * 100 + parts.tm_mday;
    };
    const std::chrono::year_month_day day(date);
    const int wanted = static_cast<int>(day.year()) * 10'000
        + static_cast<int>(static_cast<unsigned>(day.month())) * 100
        + static_cast<int>(static_cast<unsigned>(day.day()));
    constexpr std::time_t aDay = 86'400;
    auto before = midnight - aDay;
    auto reached = midnight + aDay;
    while (reached - before > 1) {
        const auto middle = before + (reached - before) / 2;
        (dayNumber(middle) < wanted ? before : reached) = middle;
    }
    return static_cast<UnixTime>(reached);
}

} // namespace

std::optional<DaySpan> localDaySpan(std::string_view text)
{
    const auto date = calendarDay(text);
    if (!date)
        return std::nullopt;
    const std::chrono::sys_days day(*date);
    return DaySpan{startOfLocalDay(day), startOfLocalDay(day + std::chrono::days(1))};
}

UnixTime unixTime(std::filesystem::file_time_type time)
{
    return std::chrono::duration<double>(std::chrono::file_clock::to_sys(time).time_since_epoch()).count();
}

std::filesystem::file_time_type fileTime(UnixTime time)
{
    using Nanoseconds = std::chrono::nanoseconds;
    return std::chrono::file_clock::from_sys(std::chrono::sys_time<Nanoseconds>(
        std::chrono::duration_cast<Nanoseconds>(std::chrono::duration<double>(time))));
}

UnixTime modificationTime(const std::filesystem::path& file)
{
    return unixTime(std::filesystem::last_write_time(file));
}

std::string localDay(UnixTime time)
{
    return localTime(time, "%Y-%m-%d");
}

std::string localDateTime(UnixTime time)
{
    return localTime(time, "%Y-%m-%d %H:%M:%S");
}

UnixTime SystemClock::now() const
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

} // namespace korvo
