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

} // namespace

UnixTime modificationTime(const std::filesystem::path& file)
{
    const auto time = std::chrono::file_clock::to_sys(std::filesystem::last_write_time(file));
    return std::chrono::duration<double>(time.time_since_epoch()).count();
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
