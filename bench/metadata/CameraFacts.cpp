// Camera facts of many files: our reader beside libexiv2 and beside a bare open, read of 64 KiB and close,
// which is the least that any reader does. The contestants take turns; medians of five rounds.
//
//     bench_metadata LIST             LIST names a file that lists the photos, one a line
//     bench_metadata facts LIST       reads their camera facts once, for whole programs to stand beside
#include "bench/support/Compare.h"
#include "metadata/DescriptiveReader.h"
#include "metadata/ExifReader.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exiv2/exiv2.hpp>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// Reads one file and returns how much it found, so that nothing is optimised away.
using Read = std::size_t (*)(const fs::path& file);

std::size_t readBare(const fs::path& file)
{
    thread_local std::vector<char> buffer(64 * 1024);
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    const auto count = ::pread(descriptor, buffer.data(), buffer.size(), 0);
    ::close(descriptor);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::size_t readFacts(const fs::path& file)
{
    const auto info = korvo::readExif(file);
    return info && info->camera ? info->camera->size() : 0;
}

std::size_t readAll(const fs::path& file)
{
    return korvo::readFileMetadata(file).descriptive.title.size();
}

std::size_t readWithExiv2(const fs::path& file)
{
    static constexpr std::array keys{"Exif.Image.Make", "Exif.Image.Model", "Exif.Photo.LensModel",
        "Exif.Photo.ExposureTime", "Exif.Photo.FNumber", "Exif.Photo.ISOSpeedRatings",
        "Exif.Photo.FocalLength", "Exif.Photo.DateTimeOriginal", "Exif.Photo.OffsetTimeOriginal",
        "Exif.GPSInfo.GPSLatitude", "Exif.GPSInfo.GPSLatitudeRef", "Exif.GPSInfo.GPSLongitude",
        "Exif.GPSInfo.GPSLongitudeRef"};
    const auto image = Exiv2::ImageFactory::open(file.string());
    image->readMetadata();
    const auto& data = image->exifData();
    std::size_t found = 0;
    for (const auto* key : keys)
        if (const auto entry = data.findKey(Exiv2::ExifKey(key)); entry != data.end())
            found += entry->toString().size();
    return found;
}

struct Contestant {
    const char* name;
    Read read;
    std::size_t share; ///< every how many-th file it gets; libexiv2 would take a minute for all
};

constexpr std::array contestants{Contestant{"bare open + pread 64 KiB + close", readBare, 1},
    Contestant{"readExif", readFacts, 1}, Contestant{"readFileMetadata", readAll, 1},
    Contestant{"libexiv2", readWithExiv2, 10}};

std::vector<fs::path> linesOf(const char* list)
{
    std::vector<fs::path> lines;
    std::ifstream stream(list);
    for (std::string line; std::getline(stream, line);)
        lines.emplace_back(line);
    return lines;
}

/// Microseconds a file takes with all threads working, by the clock and of the processors.
struct Times {
    double clock, processor;
};

Times timesPerFile(const std::vector<fs::path>& files, const Contestant& contestant, unsigned threads)
{
    std::atomic<std::size_t> next = 0, found = 0, done = 0;
    const auto work = [&] {
        std::size_t sum = 0, count = 0;
        for (auto i = contestant.share * next++; i < files.size(); i = contestant.share * next++, ++count)
            sum += contestant.read(files[i]);
        found += sum;
        done += count;
    };
    const double processor = korvo::bench::processorSeconds();
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::thread> others;
    for (unsigned i = 1; i < threads; ++i)
        others.emplace_back(work);
    work();
    for (auto& thread : others)
        thread.join();
    const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
    if (found == 0)
        throw std::runtime_error(std::string(contestant.name) + " found nothing");
    const double count = static_cast<double>(done);
    return {time.count() / count, 1e6 * (korvo::bench::processorSeconds() - processor) / count};
}

constexpr std::size_t rounds = 5;
using Rounds = std::array<Times, rounds>;

double median(const Rounds& all, double Times::*time)
{
    std::array<double, rounds> values{};
    std::ranges::transform(all, values.begin(), [&](const Times& times) { return times.*time; });
    std::ranges::nth_element(values, values.begin() + rounds / 2);
    return values[rounds / 2];
}

void compare(const std::vector<fs::path>& files, unsigned threads)
{
    std::array<Rounds, contestants.size()> times{};
    for (std::size_t round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < contestants.size(); ++i)
            times[i][round] = timesPerFile(files, contestants[i], threads);
    std::printf(
        "%u thread%s, %zu files: us a file by the clock and of the processors, each beside the bare reads\n",
        threads, threads == 1 ? "" : "s", files.size());
    std::vector<korvo::bench::Timing> timings;
    for (std::size_t i = 0; i < contestants.size(); ++i) {
        const double clock = median(times[i], &Times::clock), processor = median(times[i], &Times::processor);
        std::printf("  %-34s %9.2f x %-8.2f %9.2f x %-8.2f %10.0f files/s\n", contestants[i].name, clock,
            clock / median(times[0], &Times::clock), processor,
            processor / median(times[0], &Times::processor), 1e6 / clock);
        timings.push_back({contestants[i].name, clock / 1e6, processor / 1e6});
    }
    korvo::bench::keepResult("Camera facts of a file, " + std::to_string(threads) + " threads", timings);
}

std::mutex xmpMutex;

void lockXmp(void*, bool lock)
{
    lock ? xmpMutex.lock() : xmpMutex.unlock();
}

} // namespace

int main(int argc, char** argv)
{
    const auto files = argc > 1 ? linesOf(argv[argc - 1]) : std::vector<fs::path>();
    if (files.empty()) {
        std::fprintf(stderr, "usage: bench_metadata [facts] LIST, a file that names one photo a line\n");
        return 2;
    }
    if (argc > 2)
        return timesPerFile(files, contestants[1], 1).clock > 0 ? 0 : 1;
    Exiv2::XmpParser::initialize(lockXmp, nullptr);
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    for (const unsigned threads : {1U, 2U})
        compare(files, threads);
    return 0;
}
