#pragma once

#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace korvo::bench {

/// One way of doing the work that is compared.
struct Contender {
    std::string name;
    std::function<void()> run;
    std::function<void()> prepare = [] {}; // before each run, not timed
    int mostRounds = std::numeric_limits<int>::max(); // fewer for one that takes very long
};

/// What one contender took: medians, in seconds.
struct Timing {
    std::string name;
    double clock;
    double processors;
};

/// Runs the contenders in turn, `rounds` times each, so that whatever else the machine does meets all of
/// them, and prints the median seconds of each, its ratio to the last one, the yardstick, and the seconds of
/// processors, which others disturb less. Returns the medians. Keeps them as keepResult does.
std::vector<double> compare(
    const std::string& title, const std::vector<Contender>& contenders, int rounds = 5);

/// Appends a comparison as a line of JSON, {"title", "seconds": {name: clock}}, to the file that
/// $KORVO_BENCH_RESULTS names, if it does; bench/compare/run makes its page of them.
void keepResult(const std::string& title, const std::vector<Timing>& timings);

/// The memory that `work` leaves in use, in bytes: measured in a process of its own.
double memoryTakenBy(const std::function<void()>& work);

/// The most memory that this process has had in use so far, in bytes.
double peakMemory();

/// The processors' time that this process and those it has waited for took so far, in seconds.
double processorSeconds();

/// The seconds a call takes.
double secondsOf(const std::function<void()>& work);

} // namespace korvo::bench
