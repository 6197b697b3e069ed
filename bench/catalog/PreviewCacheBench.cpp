// The cache of previews when it holds many: bench_previews [COUNT [BYTES]], one million of 2,000 bytes unless
// said otherwise. The bound lets a hundredth of them be stored again by removing others.
#include "bench/support/Compare.h"
#include "catalog/PreviewCache.h"
#include "tests/support/TemporaryFolder.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <stdexcept>

namespace {

using namespace korvo;

class CountingClock : public Clock {
public:
    UnixTime now() const override { return time; }
    UnixTime time = 1e9;
};

PreviewKey keyOf(std::uint64_t number)
{
    std::mt19937_64 random(number);
    PreviewKey key;
    std::ranges::generate(key, [&] { return static_cast<std::uint8_t>(random()); });
    return key;
}

constexpr auto state = "2000000 1700000000 123456789";

/// Does the work for each number and prints how long one takes: in the middle, the longest.
template <typename Work>
void measure(const char* name, std::int64_t count, Work work)
{
    std::vector<double> seconds;
    for (std::int64_t i = 0; i < count; ++i)
        seconds.push_back(bench::secondsOf([&] { work(i); }));
    std::ranges::sort(seconds);
    double sum = 0;
    for (const double each : seconds)
        sum += each;
    fmt::print("  {:<40} mean {:>8.3f} ms, median {:>8.3f} ms, longest {:>8.3f} ms\n", name,
        1e3 * sum / double(count), 1e3 * seconds[seconds.size() / 2], 1e3 * seconds.back());
}

} // namespace

int main(int argc, char** arguments)
{
    const std::int64_t count = argc > 1 ? std::atoll(arguments[1]) : 1'000'000;
    const std::size_t bytes = argc > 2 ? static_cast<std::size_t>(std::atoll(arguments[2])) : 2000;
    const TemporaryFolder folder;
    CountingClock clock;
    const std::vector<std::uint8_t> image(bytes, 7);
    PreviewCache cache(folder.path(), count * static_cast<std::int64_t>(bytes), clock);
    fmt::print("{} previews of {} bytes\n", count, bytes);
    measure("stored", count, [&](std::int64_t i) {
        clock.time += 1;
        cache.store(keyOf(static_cast<std::uint64_t>(i)), state, image);
    });
    std::mt19937_64 random(1);
    measure("found", count / 100, [&](std::int64_t) {
        if (!cache.find(keyOf(random() % static_cast<std::uint64_t>(count))))
            throw std::runtime_error("a preview is missing");
    });
    measure("not found", count / 100,
        [&](std::int64_t i) { cache.find(keyOf(static_cast<std::uint64_t>(count + i))); });
    measure("stored in the place of the oldest", count / 100, [&](std::int64_t i) {
        clock.time += 1;
        cache.store(keyOf(static_cast<std::uint64_t>(2 * count + i)), state, image);
    });
    measure("opened", 20, [&](std::int64_t) {
        const PreviewCache other(folder.path(), count * static_cast<std::int64_t>(bytes), clock);
    });
}
