#include "platform/linux/MountTable.h"

#include "base/Text.h"
#include "platform/PosixFile.h"
#include "platform/linux/StopEvent.h"

#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/sysmacros.h>
#include <thread>
#include <unistd.h>

namespace korvo {

namespace {

constexpr auto tablePath = "/proc/self/mountinfo";

/// The kernel writes blanks, tabs, line ends and backslashes as "\040".
std::string unescaped(std::string_view text)
{
    const auto isOctal = [](char digit) { return digit >= '0' && digit <= '7'; };
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && text.size() - i > 3 && isOctal(text[i + 1]) && isOctal(text[i + 2])
            && isOctal(text[i + 3])) {
            result += static_cast<char>(
                ((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0')) & 0xFF);
            i += 3;
        } else {
            result += text[i];
        }
    }
    return result;
}

std::optional<std::uint64_t> deviceNumber(std::string_view text)
{
    const auto parts = split(text, ':');
    const auto driver = parts.size() == 2 ? wholeNumber<unsigned>(parts[0]) : std::nullopt;
    const auto disk = driver ? wholeNumber<unsigned>(parts[1]) : std::nullopt;
    return disk ? std::optional<std::uint64_t>(makedev(*driver, *disk)) : std::nullopt;
}

/// "27 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda rw": optional fields end with the hyphen.
std::optional<Mount> parseLine(std::string_view line)
{
    constexpr std::size_t firstOptional = 6;
    const auto fields = split(line, ' ');
    for (std::size_t i = firstOptional; i + 2 < fields.size(); ++i)
        if (fields[i] == "-")
            if (const auto device = deviceNumber(fields[2]))
                return Mount{*device, unescaped(fields[3]), unescaped(fields[4]), unescaped(fields[i + 1]),
                    unescaped(fields[i + 2])};
    return std::nullopt;
}

void check(const PosixFile& file)
{
    if (!file)
        throwFileError("watch", tablePath);
}

/// A thread that waits for the kernel's word, and the way to end it.
class TableWatch {
public:
    explicit TableWatch(std::function<void()> changed)
        : table_(openFile(tablePath, O_RDONLY)), end_(stop_.get_token())
    {
        check(table_);
        thread_ = std::jthread([this, call = std::move(changed)] { wait(call); });
    }

    ~TableWatch() { stop_.request_stop(); }
    TableWatch(const TableWatch&) = delete;
    TableWatch& operator=(const TableWatch&) = delete;

private:
    void wait(const std::function<void()>& changed) const
    {
        for (;;) {
            pollfd waits[2] = {{table_.descriptor(), POLLPRI, 0}, {end_.descriptor(), POLLIN, 0}};
            if (poll(waits, 2, -1) < 0 && errno != EINTR)
                return;
            if (waits[1].revents)
                return;
            if (waits[0].revents)
                changed();
        }
    }

    PosixFile table_;
    std::stop_source stop_;
    StopEvent end_;
    std::jthread thread_;
};

} // namespace

std::vector<Mount> parseMountTable(std::string_view text)
{
    std::vector<Mount> mounts;
    for (const auto line : split(text, '\n'))
        if (auto mount = parseLine(line))
            mounts.push_back(std::move(*mount));
    return mounts;
}

std::vector<Mount> readMountTable()
{
    return parseMountTable(readWholeFile(tablePath));
}

std::shared_ptr<void> watchMountTable(std::function<void()> changed)
{
    return std::make_shared<TableWatch>(std::move(changed));
}

} // namespace korvo
