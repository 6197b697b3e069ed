#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace korvo {

/// Runs a test of random actions with a first seed, which is $KORVO_SOAK_SEED where that is set, and, for as
/// many minutes as $KORVO_SOAK_MINUTES says, with the seeds after it until one fails.
template <typename Test>
void forSeeds(Test test)
{
    using Time = std::chrono::steady_clock;
    const char* const minutes = std::getenv("KORVO_SOAK_MINUTES");
    const auto until
        = Time::now() + std::chrono::duration<double, std::ratio<60>>(minutes ? std::atof(minutes) : 0);
    const char* const given = std::getenv("KORVO_SOAK_SEED");
    const unsigned start = given ? static_cast<unsigned>(std::atol(given)) : 11;
    unsigned seed = start;
    for (bool first = true; first || Time::now() < until; first = false, ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        test(seed);
        if (testing::Test::HasFailure())
            return;
    }
    if (minutes)
        std::printf("%u seeds\n", seed - start);
}

} // namespace korvo
