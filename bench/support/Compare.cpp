#include "bench/support/Compare.h"

#include "base/Json.h"

#include <fmt/format.h>

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace korvo::bench {

namespace {

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double residentBytes()
{
    std::ifstream statm("/proc/self/statm");
    double total = 0;
    double resident = 0;
    statm >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

} // namespace

double processorSeconds()
{
    double seconds = 0;
    for (const auto whose : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(whose, &usage);
        for (const timeval& time : {usage.ru_utime, usage.ru_stime})
            seconds += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    }
    return seconds;
}

double secondsOf(const std::function<void()>& work)
{
    const auto begun = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
}

std::vector<double> compare(const std::string& title, const std::vector<Contender>& contenders, int rounds)
{
    std::vector<std::vector<double>> seconds(contenders.size());
    std::vector<std::vector<double>> processors(contenders.size());
    for (int round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            if (round >= contenders[i].mostRounds)
                continue;
            contenders[i].prepare();
            const double before = processorSeconds();
            seconds[i].push_back(secondsOf(contenders[i].run));
            processors[i].push_back(processorSeconds() - before);
        }
    std::vector<Timing> timings;
    std::vector<double> medians;
    for (std::size_t i = 0; i < contenders.size(); ++i) {
        medians.push_back(median(seconds[i]));
        timings.push_back({contenders[i].name, medians.back(), median(processors[i])});
    }
    fmt::print("{}\n", title);
    for (const auto& [name, clock, processor] : timings)
        fmt::print("  {:<44}{:>9.4f} s  x {:.2f}  processors {:.4f} s\n", name, clock, clock / medians.back(),
            processor);
    std::fflush(stdout);
    keepResult(title, timings);
    return medians;
}

void keepResult(const std::string& title, const std::vector<Timing>& timings)
{
    const char* const file = std::getenv("KORVO_BENCH_RESULTS");
    if (!file)
        return;
    JsonWriter json;
    json.beginObject();
    json.member("title", title);
    json.key("seconds");
    json.beginObject();
    for (const auto& timing : timings)
        json.member(timing.name, timing.clock);
    json.endObject();
    json.endObject();
    std::ofstream(file, std::ios::app) << json.take() << '\n';
}

double peakMemory()
{
    // Not rusage::ru_maxrss: it counts what the process was before it became this program, its parent's
    // memory too.
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (double kilobytes = 0; word == "VmHWM:" && status >> kilobytes)
            return 1024 * kilobytes;
    throw std::runtime_error("the system does not tell the most memory");
}

double memoryTakenBy(const std::function<void()>& work)
{
    int ends[2];
    if (pipe(ends) != 0)
        return -1;
    std::fflush(stdout);
    if (const auto child = fork(); child == 0) {
        const double before = residentBytes();
        work();
        malloc_trim(0);
        const double taken = residentBytes() - before;
        [[maybe_unused]] const auto written = write(ends[1], &taken, sizeof taken);
        _exit(0);
    } else {
        double taken = -1;
        [[maybe_unused]] const auto got = read(ends[0], &taken, sizeof taken);
        waitpid(child, nullptr, 0);
        close(ends[0]);
        close(ends[1]);
        return taken;
    }
}

} // namespace korvo::bench
